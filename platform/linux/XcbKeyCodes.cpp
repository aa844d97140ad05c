#include "platform/linux/XcbKeyCodes.h"

#include <linux/input-event-codes.h>

#include <algorithm>
#include <array>

namespace varno {
namespace {

struct KeyPlace {
    int carbon;
    quint8 evdev;
};

constexpr std::array keyPlaces = {
    KeyPlace{0x00, KEY_A},          KeyPlace{0x01, KEY_S},          KeyPlace{0x02, KEY_D},
    KeyPlace{0x03, KEY_F},          KeyPlace{0x04, KEY_H},          KeyPlace{0x05, KEY_G},
    KeyPlace{0x06, KEY_Z},          KeyPlace{0x07, KEY_X},          KeyPlace{0x08, KEY_C},
    KeyPlace{0x09, KEY_V},          KeyPlace{0x0A, KEY_102ND},      KeyPlace{0x0B, KEY_B},
    KeyPlace{0x0C, KEY_Q},          KeyPlace{0x0D, KEY_W},          KeyPlace{0x0E, KEY_E},
    KeyPlace{0x0F, KEY_R},          KeyPlace{0x10, KEY_Y},          KeyPlace{0x11, KEY_T},
    KeyPlace{0x12, KEY_1},          KeyPlace{0x13, KEY_2},          KeyPlace{0x14, KEY_3},
    KeyPlace{0x15, KEY_4},          KeyPlace{0x16, KEY_6},          KeyPlace{0x17, KEY_5},
    KeyPlace{0x18, KEY_EQUAL},      KeyPlace{0x19, KEY_9},          KeyPlace{0x1A, KEY_7},
    KeyPlace{0x1B, KEY_MINUS},      KeyPlace{0x1C, KEY_8},          KeyPlace{0x1D, KEY_0},
    KeyPlace{0x1E, KEY_RIGHTBRACE}, KeyPlace{0x1F, KEY_O},          KeyPlace{0x20, KEY_U},
    KeyPlace{0x21, KEY_LEFTBRACE},  KeyPlace{0x22, KEY_I},          KeyPlace{0x23, KEY_P},
    KeyPlace{0x24, KEY_ENTER},      KeyPlace{0x25, KEY_L},          KeyPlace{0x26, KEY_J},
    KeyPlace{0x27, KEY_APOSTROPHE}, KeyPlace{0x28, KEY_K},          KeyPlace{0x29, KEY_SEMICOLON},
    KeyPlace{0x2A, KEY_BACKSLASH},  KeyPlace{0x2B, KEY_COMMA},      KeyPlace{0x2C, KEY_SLASH},
    KeyPlace{0x2D, KEY_N},          KeyPlace{0x2E, KEY_M},          KeyPlace{0x2F, KEY_DOT},
    KeyPlace{0x30, KEY_TAB},        KeyPlace{0x31, KEY_SPACE},      KeyPlace{0x32, KEY_GRAVE},
    KeyPlace{0x33, KEY_BACKSPACE},  KeyPlace{0x35, KEY_ESC},        KeyPlace{0x40, KEY_F17},
    KeyPlace{0x41, KEY_KPDOT},      KeyPlace{0x43, KEY_KPASTERISK}, KeyPlace{0x45, KEY_KPPLUS},
    KeyPlace{0x48, KEY_VOLUMEUP},   KeyPlace{0x49, KEY_VOLUMEDOWN}, KeyPlace{0x4A, KEY_MUTE},
    KeyPlace{0x4B, KEY_KPSLASH},    KeyPlace{0x4C, KEY_KPENTER},    KeyPlace{0x4E, KEY_KPMINUS},
    KeyPlace{0x4F, KEY_F18},        KeyPlace{0x50, KEY_F19},        KeyPlace{0x51, KEY_KPEQUAL},
    KeyPlace{0x52, KEY_KP0},        KeyPlace{0x53, KEY_KP1},        KeyPlace{0x54, KEY_KP2},
    KeyPlace{0x55, KEY_KP3},        KeyPlace{0x56, KEY_KP4},        KeyPlace{0x57, KEY_KP5},
    KeyPlace{0x58, KEY_KP6},        KeyPlace{0x59, KEY_KP7},        KeyPlace{0x5A, KEY_F20},
    KeyPlace{0x5B, KEY_KP8},        KeyPlace{0x5C, KEY_KP9},        KeyPlace{0x5D, KEY_YEN},
    KeyPlace{0x5E, KEY_RO},         KeyPlace{0x5F, KEY_KPCOMMA},    KeyPlace{0x60, KEY_F5},
    KeyPlace{0x61, KEY_F6},         KeyPlace{0x62, KEY_F7},         KeyPlace{0x63, KEY_F3},
    KeyPlace{0x64, KEY_F8},         KeyPlace{0x65, KEY_F9},         KeyPlace{0x66, KEY_HANJA},
    KeyPlace{0x67, KEY_F11},        KeyPlace{0x68, KEY_HANGEUL},    KeyPlace{0x69, KEY_F13},
    KeyPlace{0x6A, KEY_F16},        KeyPlace{0x6B, KEY_F14},        KeyPlace{0x6D, KEY_F10},
    KeyPlace{0x6F, KEY_F12},        KeyPlace{0x71, KEY_F15},        KeyPlace{0x72, KEY_HELP},
    KeyPlace{0x73, KEY_HOME},       KeyPlace{0x74, KEY_PAGEUP},     KeyPlace{0x75, KEY_DELETE},
    KeyPlace{0x76, KEY_F4},         KeyPlace{0x77, KEY_END},        KeyPlace{0x78, KEY_F2},
    KeyPlace{0x79, KEY_PAGEDOWN},   KeyPlace{0x7A, KEY_F1},         KeyPlace{0x7B, KEY_LEFT},
    KeyPlace{0x7C, KEY_RIGHT},      KeyPlace{0x7D, KEY_DOWN},       KeyPlace{0x7E, KEY_UP},
};

} // namespace

std::optional<quint8> xKeyCode(int carbonKeyCode)
{
    const auto* const found =
        std::find_if(keyPlaces.begin(), keyPlaces.end(),
                     [=](const KeyPlace& place) { return place.carbon == carbonKeyCode; });
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
    return found->carbon;
}

} // namespace varno
