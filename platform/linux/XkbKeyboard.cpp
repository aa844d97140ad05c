#include "platform/linux/XkbKeyboard.h"

#include "platform/CarbonModifiers.h"
#include "platform/linux/XcbKeyCodes.h"

namespace varno {

QString XkbKeyboard::character(int carbonKeyCode) const
{
    const std::optional<quint8> keyCode = xKeyCode(carbonKeyCode);
    const Layout* const known = keyCode ? layout() : nullptr;
    const xkb_keysym_t* keysyms = nullptr;
    if (!known || !known->keymap ||
        xkb_keymap_key_get_syms_by_level(known->keymap.get(), *keyCode, known->group, 0,
                                         &keysyms) != 1)
        return {};
    const char32_t character = xkb_keysym_to_utf32(*keysyms);
    return QChar::isPrint(character) ? QString::fromUcs4(&character, 1) : QString();
}

std::optional<int> XkbKeyboard::carbonKeyCode(const NativeKey& key) const
{
    return carbonKeyCodeOf(key.scanCode);
}

int XkbKeyboard::carbonModifiers(Qt::KeyboardModifiers modifiers) const
{
    return (modifiers.testFlag(Qt::ShiftModifier) ? carbonModifier::shift : 0) |
           (modifiers.testFlag(Qt::ControlModifier) ? carbonModifier::control : 0) |
           (modifiers.testFlag(Qt::AltModifier) ? carbonModifier::option : 0) |
           (modifiers.testFlag(Qt::MetaModifier) ? carbonModifier::command : 0);
}

} // namespace varno
