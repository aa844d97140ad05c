#pragma once

#include "platform/Keyboard.h"

#include <memory>

namespace varno {

class XcbConnection;

/// The keyboard of an X server. Where there is none, keys type nothing that we know of.
class XcbKeyboard final : public Keyboard {
    Q_OBJECT

public:
    /// `connection` outlives it.
    explicit XcbKeyboard(XcbConnection& connection);
    ~XcbKeyboard() override;

    [[nodiscard]] QString character(int carbonKeyCode) const override;
    [[nodiscard]] std::optional<int> carbonKeyCode(quint32 nativeScanCode) const override;
    [[nodiscard]] int carbonModifiers(Qt::KeyboardModifiers modifiers) const override;

private:
    struct Layout;

    [[nodiscard]] const Layout& layout() const;
    void forgetLayout();

    XcbConnection& m_connection;
    mutable std::unique_ptr<Layout> m_layout; ///< read when first asked for
};

} // namespace varno
