#pragma once

#include "kit/ThemedText.h"
#include "shortcuts/KeyboardShortcuts.h"

namespace varno {

/// Says that the system has refused the shortcut of a name, and the way out. It is hidden while
/// there is nothing to say.
class RefusalNotice final : public ThemedText {
    Q_OBJECT

public:
    /// `shortcuts` outlives it.
    explicit RefusalNotice(KeyboardShortcuts::Name name,
                           KeyboardShortcuts& shortcuts = KeyboardShortcuts::shared());

private:
    void showIfRefused();

    KeyboardShortcuts::Name m_name;
    KeyboardShortcuts& m_shortcuts;
};

} // namespace varno
