#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace varno {

/// The array of strings that `text` holds between its first "[" and its last "]"; nothing when
/// there is no such array. A "]" before the "[" ends the process, with a message on the console.
std::optional<QStringList> parseJSONArray(const QString& text);

} // namespace varno
