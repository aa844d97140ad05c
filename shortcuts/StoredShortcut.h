#pragma once

#include "shortcuts/Shortcut.h"

#include <optional>

namespace varno {

// The form of shortcuts in the preferences: a JSON text, under "KeyboardShortcuts_" and the name.

[[nodiscard]] QString preferenceKey(const QString& name);
[[nodiscard]] QString encoded(const Shortcut& shortcut);
/// Nothing for a text that is none.
[[nodiscard]] std::optional<Shortcut> decoded(const QString& text);

} // namespace varno
