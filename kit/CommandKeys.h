#pragma once

#include <QKeySequence>
#include <QList>

namespace varno {

/// What is left of `keys` on this system: where Command is itself, Control is not its twin.
[[nodiscard]] QList<QKeySequence> commandKeys(QList<QKeySequence> keys);

} // namespace varno
