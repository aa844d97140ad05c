#pragma once

#include "recorder/ShortcutRefusal.h"

namespace varno {

/// The panel's own keys, which stand in for a menu's, and those of the menu that the system keeps
/// for the program.
[[nodiscard]] QList<MenuItem> panelKeys(const Keyboard& keyboard);

} // namespace varno
