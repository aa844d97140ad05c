#include "platform/linux/XcbKeyboard.h"

#include "platform/CarbonModifiers.h"
#include "platform/linux/XcbConnection.h"
#include "platform/linux/XcbKeyCodes.h"
#include "platform/linux/XkbOwned.h"

#include <xkbcommon/xkbcommon-x11.h>

namespace varno {

struct XcbKeyboard::Layout {
    explicit Layout(xcb_connection_t* connection)
        : context(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES))
    {
        const std::int32_t device = xkb_x11_get_core_keyboard_device_id(connection);
        if (!context || device < 0)
            return;
        keymap.reset(xkb_x11_keymap_new_from_device(context.get(), connection, device,
                                                    XKB_KEYMAP_COMPILE_NO_FLAGS));
        if (!keymap)
            return;
        const XkbOwned<xkb_state> state(
            xkb_x11_state_new_from_device(keymap.get(), connection, device));
        if (state)
            group = xkb_state_serialize_layout(state.get(), XKB_STATE_LAYOUT_EFFECTIVE);
    }

    [[nodiscard]] QString character(xkb_keycode_t keyCode) const
    {
        const xkb_keysym_t* keysyms = nullptr;
        if (!keymap ||
            xkb_keymap_key_get_syms_by_level(keymap.get(), keyCode, group, 0, &keysyms) != 1)
            return {};
        const char32_t character = xkb_keysym_to_utf32(*keysyms);
        return QChar::isPrint(character) ? QString::fromUcs4(&character, 1) : QString();
    }

    XkbOwned<xkb_context> context;
    XkbOwned<xkb_keymap> keymap;
    xkb_layout_index_t group = 0;
};

XcbKeyboard::XcbKeyboard(XcbConnection& connection)
    : m_connection(connection)
{
    connect(&connection, &XcbConnection::keymapChanged, this, &XcbKeyboard::forgetLayout);
    connect(&connection, &XcbConnection::layoutSwitched, this, &XcbKeyboard::forgetLayout);
}

XcbKeyboard::~XcbKeyboard() = default;

QString XcbKeyboard::character(int carbonKeyCode) const
{
    const std::optional<quint8> keyCode = xKeyCode(carbonKeyCode);
    return keyCode && m_connection.isOpen() ? layout().character(*keyCode) : QString();
}

std::optional<int> XcbKeyboard::carbonKeyCode(quint32 nativeScanCode) const
{
    return carbonKeyCodeOf(nativeScanCode);
}

int XcbKeyboard::carbonModifiers(Qt::KeyboardModifiers modifiers) const
{
    return (modifiers.testFlag(Qt::ShiftModifier) ? carbonModifier::shift : 0) |
           (modifiers.testFlag(Qt::ControlModifier) ? carbonModifier::control : 0) |
           (modifiers.testFlag(Qt::AltModifier) ? carbonModifier::option : 0) |
           (modifiers.testFlag(Qt::MetaModifier) ? carbonModifier::command : 0);
}

const XcbKeyboard::Layout& XcbKeyboard::layout() const
{
    if (!m_layout) {
        m_layout = std::make_unique<Layout>(m_connection.get());
        m_connection.readLater();
    }
    return *m_layout;
}

void XcbKeyboard::forgetLayout()
{
    m_layout.reset();
    Q_EMIT layoutChanged();
}

} // namespace varno
