#pragma once

#include "platform/Keyboard.h"
#include "platform/linux/XkbOwned.h"

namespace varno {

/// A keyboard whose keymap xkbcommon reads.
class XkbKeyboard : public Keyboard {
    Q_OBJECT

public:
    [[nodiscard]] QString character(int carbonKeyCode) const final;
    [[nodiscard]] std::optional<int> carbonKeyCode(const NativeKey& key) const final;
    [[nodiscard]] int carbonModifiers(Qt::KeyboardModifiers modifiers) const final;

protected:
    struct Layout {
        XkbOwned<xkb_context> context{xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES)};
        XkbOwned<xkb_keymap> keymap; ///< null if nobody knows
        xkb_layout_index_t group = 0;
    };

    /// Null if nobody knows.
    [[nodiscard]] virtual const Layout* layout() const = 0;
};

} // namespace varno
