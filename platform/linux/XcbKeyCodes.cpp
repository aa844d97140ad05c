#include "platform/linux/XcbKeyCodes.h"

#include "platform/Key.h"

#include <linux/input-event-codes.h>

#include <algorithm>
#include <array>

namespace varno {
namespace {

struct KeyPlace {
    Key key{};
    quint8 evdev = 0;
};

constexpr std::array keyPlaces = {
    KeyPlace{Key::a, KEY_A},
    KeyPlace{Key::s, KEY_S},
    KeyPlace{Key::d, KEY_D},
    KeyPlace{Key::f, KEY_F},
    KeyPlace{Key::h, KEY_H},
    KeyPlace{Key::g, KEY_G},
    KeyPlace{Key::z, KEY_Z},
    KeyPlace{Key::x, KEY_X},
    KeyPlace{Key::c, KEY_C},
    KeyPlace{Key::v, KEY_V},
    KeyPlace{Key::section, KEY_102ND},
    KeyPlace{Key::b, KEY_B},
    KeyPlace{Key::q, KEY_Q},
    KeyPlace{Key::w, KEY_W},
    KeyPlace{Key::e, KEY_E},
    KeyPlace{Key::r, KEY_R},
    KeyPlace{Key::y, KEY_Y},
    KeyPlace{Key::t, KEY_T},
    KeyPlace{Key::one, KEY_1},
    KeyPlace{Key::two, KEY_2},
    KeyPlace{Key::three, KEY_3},
    KeyPlace{Key::four, KEY_4},
    KeyPlace{Key::six, KEY_6},
    KeyPlace{Key::five, KEY_5},
    KeyPlace{Key::equal, KEY_EQUAL},
    KeyPlace{Key::nine, KEY_9},
    KeyPlace{Key::seven, KEY_7},
    KeyPlace{Key::minus, KEY_MINUS},
    KeyPlace{Key::eight, KEY_8},
    KeyPlace{Key::zero, KEY_0},
    KeyPlace{Key::rightBracket, KEY_RIGHTBRACE},
    KeyPlace{Key::o, KEY_O},
    KeyPlace{Key::u, KEY_U},
    KeyPlace{Key::leftBracket, KEY_LEFTBRACE},
    KeyPlace{Key::i, KEY_I},
    KeyPlace{Key::p, KEY_P},
    KeyPlace{Key::returnKey, KEY_ENTER},
    KeyPlace{Key::l, KEY_L},
    KeyPlace{Key::j, KEY_J},
    KeyPlace{Key::quote, KEY_APOSTROPHE},
    KeyPlace{Key::k, KEY_K},
    KeyPlace{Key::semicolon, KEY_SEMICOLON},
    KeyPlace{Key::backslash, KEY_BACKSLASH},
    KeyPlace{Key::comma, KEY_COMMA},
    KeyPlace{Key::slash, KEY_SLASH},
    KeyPlace{Key::n, KEY_N},
    KeyPlace{Key::m, KEY_M},
    KeyPlace{Key::period, KEY_DOT},
    KeyPlace{Key::tab, KEY_TAB},
    KeyPlace{Key::space, KEY_SPACE},
    KeyPlace{Key::backtick, KEY_GRAVE},
    KeyPlace{Key::deleteKey, KEY_BACKSPACE},
    KeyPlace{Key::escape, KEY_ESC},
    KeyPlace{Key::f17, KEY_F17},
    KeyPlace{Key::keypadDecimal, KEY_KPDOT},
    KeyPlace{Key::keypadMultiply, KEY_KPASTERISK},
    KeyPlace{Key::keypadPlus, KEY_KPPLUS},
    KeyPlace{Key::volumeUp, KEY_VOLUMEUP},
    KeyPlace{Key::volumeDown, KEY_VOLUMEDOWN},
    KeyPlace{Key::mute, KEY_MUTE},
    KeyPlace{Key::keypadDivide, KEY_KPSLASH},
    KeyPlace{Key::keypadEnter, KEY_KPENTER},
    KeyPlace{Key::keypadMinus, KEY_KPMINUS},
    KeyPlace{Key::f18, KEY_F18},
    KeyPlace{Key::f19, KEY_F19},
    KeyPlace{Key::keypadEquals, KEY_KPEQUAL},
    KeyPlace{Key::keypad0, KEY_KP0},
    KeyPlace{Key::keypad1, KEY_KP1},
    KeyPlace{Key::keypad2, KEY_KP2},
    KeyPlace{Key::keypad3, KEY_KP3},
    KeyPlace{Key::keypad4, KEY_KP4},
    KeyPlace{Key::keypad5, KEY_KP5},
    KeyPlace{Key::keypad6, KEY_KP6},
    KeyPlace{Key::keypad7, KEY_KP7},
    KeyPlace{Key::f20, KEY_F20},
    KeyPlace{Key::keypad8, KEY_KP8},
    KeyPlace{Key::keypad9, KEY_KP9},
    KeyPlace{Key::yen, KEY_YEN},
    KeyPlace{Key::underscore, KEY_RO},
    KeyPlace{Key::keypadComma, KEY_KPCOMMA},
    KeyPlace{Key::f5, KEY_F5},
    KeyPlace{Key::f6, KEY_F6},
    KeyPlace{Key::f7, KEY_F7},
    KeyPlace{Key::f3, KEY_F3},
    KeyPlace{Key::f8, KEY_F8},
    KeyPlace{Key::f9, KEY_F9},
    KeyPlace{Key::eisu, KEY_HANJA},
    KeyPlace{Key::f11, KEY_F11},
    KeyPlace{Key::kana, KEY_HANGEUL},
    KeyPlace{Key::f13, KEY_F13},
    KeyPlace{Key::f16, KEY_F16},
    KeyPlace{Key::f14, KEY_F14},
    KeyPlace{Key::f10, KEY_F10},
    KeyPlace{Key::f12, KEY_F12},
    KeyPlace{Key::f15, KEY_F15},
    KeyPlace{Key::help, KEY_HELP},
    KeyPlace{Key::home, KEY_HOME},
    KeyPlace{Key::pageUp, KEY_PAGEUP},
    KeyPlace{Key::forwardDelete, KEY_DELETE},
    KeyPlace{Key::f4, KEY_F4},
    KeyPlace{Key::end, KEY_END},
    KeyPlace{Key::f2, KEY_F2},
    KeyPlace{Key::pageDown, KEY_PAGEDOWN},
    KeyPlace{Key::f1, KEY_F1},
    KeyPlace{Key::leftArrow, KEY_LEFT},
    KeyPlace{Key::rightArrow, KEY_RIGHT},
    KeyPlace{Key::downArrow, KEY_DOWN},
    KeyPlace{Key::upArrow, KEY_UP},
};

} // namespace

std::optional<quint8> xKeyCode(int carbonKeyCode)
{
    const auto* const found =
        std::find_if(keyPlaces.begin(), keyPlaces.end(), [=](const KeyPlace& place) {
            return static_cast<int>(place.key) == carbonKeyCode;
        });
    if (found == keyPlaces.end())
        return std::nullopt;
    return static_cast<quint8>(found->evdev + firstXKeyCode);
}

std::optional<int> carbonKeyCodeOf(quint32 xKeyCode)
{
    const auto* const found =
        std::find_if(keyPlaces.begin(), keyPlaces.end(), [=](const KeyPlace& place) {
            return quint32{place.evdev} + firstXKeyCode == xKeyCode;
        });
    if (found == keyPlaces.end())
        return std::nullopt;
    return static_cast<int>(found->key);
}

} // namespace varno
