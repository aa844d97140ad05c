#pragma once

#include "platform/linux/LayerShell.h"
#include "platform/linux/XkbKeyboard.h"

namespace varno {

/// The keyboard of a Wayland compositor, as far as it tells: which of the keymap's layouts is in
/// use while a window of the program has the keyboard.
class CompositorKeyboard final : public XkbKeyboard {
    Q_OBJECT

public:
    /// `shell` outlives the event loop.
    explicit CompositorKeyboard(LayerShell& shell);

private:
    [[nodiscard]] const Layout* layout() const override { return &m_layout; }
    void take(const QByteArray& keymap);

    Layout m_layout;
};

} // namespace varno
