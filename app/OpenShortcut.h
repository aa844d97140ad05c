#pragma once

#include "app/PanelShortcut.h"
#include "shortcuts/KeyboardShortcuts.h"

namespace varno {

/// The combination that opens the panel from anywhere: Option, Command and F, unless the user chose
/// another.
const KeyboardShortcuts::Name& openVarno();

/// The same, for the screens.
[[nodiscard]] PanelShortcut panelShortcut();

} // namespace varno
