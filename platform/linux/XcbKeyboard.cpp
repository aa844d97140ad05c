#include "platform/linux/XcbKeyboard.h"

#include "platform/linux/XcbConnection.h"

#include <xkbcommon/xkbcommon-x11.h>

namespace varno {

XcbKeyboard::XcbKeyboard(XcbConnection& connection)
    : m_connection(connection)
{
    connect(&connection, &XcbConnection::keymapChanged, this, &XcbKeyboard::forgetLayout);
    connect(&connection, &XcbConnection::layoutSwitched, this, &XcbKeyboard::forgetLayout);
}

const XkbKeyboard::Layout* XcbKeyboard::layout() const
{
    if (!m_connection.isOpen())
        return nullptr;
    if (m_layout)
        return &*m_layout;
    m_layout.emplace();
    xcb_connection_t* const connection = m_connection.get();
    const std::int32_t device = xkb_x11_get_core_keyboard_device_id(connection);
    if (m_layout->context && device >= 0)
        m_layout->keymap.reset(xkb_x11_keymap_new_from_device(m_layout->context.get(), connection,
                                                              device, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (m_layout->keymap) {
        const XkbOwned<xkb_state> state(
            xkb_x11_state_new_from_device(m_layout->keymap.get(), connection, device));
        if (state)
            m_layout->group = xkb_state_serialize_layout(state.get(), XKB_STATE_LAYOUT_EFFECTIVE);
    }
    m_connection.readLater();
    return &*m_layout;
}

void XcbKeyboard::forgetLayout()
{
    m_layout.reset();
    Q_EMIT layoutChanged();
}

} // namespace varno
