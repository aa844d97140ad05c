#pragma once

#include "platform/linux/XkbKeyboard.h"

namespace varno {

class XcbConnection;

/// The keyboard of an X server. Where there is none, keys type nothing that we know of.
class XcbKeyboard final : public XkbKeyboard {
    Q_OBJECT

public:
    /// `connection` outlives it.
    explicit XcbKeyboard(XcbConnection& connection);

private:
    [[nodiscard]] const Layout* layout() const override;
    void forgetLayout();

    XcbConnection& m_connection;
    mutable std::optional<Layout> m_layout; ///< read when first asked for
};

} // namespace varno
