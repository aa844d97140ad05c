#pragma once

#include "app/PanelShortcut.h"
#include "shortcuts/KeyboardShortcuts.h"

namespace varno {

/// The shortcut that opens the panel from anywhere: Option, Command and F by default.
const KeyboardShortcuts::Name& openVarno();

/// The same shortcut, for the screens.
[[nodiscard]] PanelShortcut panelShortcut();

} // namespace varno
