#pragma once

#include "recorder/ShortcutRefusal.h"

namespace varno {

/// The panel's own keys, which stand in for a menu's: each is pressed with Control or Command.
[[nodiscard]] QList<MenuItem> panelKeys(const Keyboard& keyboard);

} // namespace varno
