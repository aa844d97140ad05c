#include "platform/linux/PortalKeyNames.h"

#include "platform/Keyboard.h"
#include "platform/linux/XcbKeyCodes.h"
#include "platform/linux/XkbOwned.h"

#include <QByteArray>
#include <QList>

#include <linux/input-event-codes.h>

#include <array>

namespace varno {
namespace {

QString nameOf(xkb_keysym_t keysym)
{
    std::array<char, 64> name{};
    const int length = xkb_keysym_get_name(keysym, name.data(), name.size());
    return length > 0 ? QString::fromLatin1(name.data()) : QString();
}

xkb_keysym_t keysymAt(xkb_keymap* keymap, xkb_keycode_t keyCode, xkb_level_index_t level)
{
    const xkb_keysym_t* keysyms = nullptr;
    return xkb_keymap_key_get_syms_by_level(keymap, keyCode, 0, level, &keysyms) == 1
               ? *keysyms
               : XKB_KEY_NoSymbol;
}

bool isOnKeypad(xkb_keycode_t keyCode)
{
    switch (const xkb_keycode_t key = keyCode - firstXKeyCode; key) {
    case KEY_KPASTERISK:
    case KEY_KPENTER:
    case KEY_KPSLASH:
    case KEY_KPEQUAL:
    case KEY_KPCOMMA:
        return true;
    default:
        return key >= KEY_KP7 && key <= KEY_KPDOT;
    }
}

QString americanName(xkb_keycode_t keyCode)
{
    const XkbOwned<xkb_context> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    const xkb_rule_names names{
        .rules = "evdev", .model = "pc105", .layout = "us", .variant = nullptr, .options = nullptr};
    const XkbOwned<xkb_keymap> keymap(
        context ? xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS)
                : nullptr);
    if (!keymap)
        return {};
    constexpr xkb_level_index_t digits = 1;
    const xkb_keysym_t second = keysymAt(keymap.get(), keyCode, digits);
    return nameOf(isOnKeypad(keyCode) && second != XKB_KEY_NoSymbol
                      ? second
                      : keysymAt(keymap.get(), keyCode, 0));
}

bool isLatin(char32_t character)
{
    const QChar::Script script = QChar::script(character);
    return script == QChar::Script_Latin || script == QChar::Script_Common;
}

} // namespace

QString keysymName(int carbonKeyCode, const Keyboard& keyboard)
{
    const quint8 keyCode = xKeyCode(carbonKeyCode).value();
    const QList<uint> typed = keyboard.character(carbonKeyCode).toUcs4();
    // A keypad types what other keys type too.
    if (isOnKeypad(keyCode) || typed.size() != 1 || !isLatin(typed.constFirst()))
        return americanName(keyCode);
    return nameOf(xkb_utf32_to_keysym(typed.constFirst()));
}

} // namespace varno
