#include "shortcuts/KeyLabel.h"

#include "platform/Key.h"
#include "platform/Keyboard.h"

#include <algorithm>
#include <array>

namespace varno {
namespace {

struct LabelledKey {
    Key key{};
    QStringView text;
};

constexpr std::array characterKeys = {
    LabelledKey{Key::a, u"A"},           LabelledKey{Key::b, u"B"},
    LabelledKey{Key::c, u"C"},           LabelledKey{Key::d, u"D"},
    LabelledKey{Key::e, u"E"},           LabelledKey{Key::f, u"F"},
    LabelledKey{Key::g, u"G"},           LabelledKey{Key::h, u"H"},
    LabelledKey{Key::i, u"I"},           LabelledKey{Key::j, u"J"},
    LabelledKey{Key::k, u"K"},           LabelledKey{Key::l, u"L"},
    LabelledKey{Key::m, u"M"},           LabelledKey{Key::n, u"N"},
    LabelledKey{Key::o, u"O"},           LabelledKey{Key::p, u"P"},
    LabelledKey{Key::q, u"Q"},           LabelledKey{Key::r, u"R"},
    LabelledKey{Key::s, u"S"},           LabelledKey{Key::t, u"T"},
    LabelledKey{Key::u, u"U"},           LabelledKey{Key::v, u"V"},
    LabelledKey{Key::w, u"W"},           LabelledKey{Key::x, u"X"},
    LabelledKey{Key::y, u"Y"},           LabelledKey{Key::z, u"Z"},
    LabelledKey{Key::zero, u"0"},        LabelledKey{Key::one, u"1"},
    LabelledKey{Key::two, u"2"},         LabelledKey{Key::three, u"3"},
    LabelledKey{Key::four, u"4"},        LabelledKey{Key::five, u"5"},
    LabelledKey{Key::six, u"6"},         LabelledKey{Key::seven, u"7"},
    LabelledKey{Key::eight, u"8"},       LabelledKey{Key::nine, u"9"},
    LabelledKey{Key::minus, u"-"},       LabelledKey{Key::equal, u"="},
    LabelledKey{Key::leftBracket, u"["}, LabelledKey{Key::rightBracket, u"]"},
    LabelledKey{Key::backslash, u"\\"},  LabelledKey{Key::semicolon, u";"},
    LabelledKey{Key::quote, u"'"},       LabelledKey{Key::comma, u","},
    LabelledKey{Key::period, u"."},      LabelledKey{Key::slash, u"/"},
    LabelledKey{Key::backtick, u"`"},    LabelledKey{Key::section, u"§"},
    LabelledKey{Key::yen, u"¥"},         LabelledKey{Key::underscore, u"_"},
};

constexpr std::array writingKeys = {
    LabelledKey{Key::returnKey, u"↩"},
    LabelledKey{Key::tab, u"⇥"},
    LabelledKey{Key::space, u"Space"},
    LabelledKey{Key::deleteKey, u"⌫"},
    LabelledKey{Key::forwardDelete, u"⌦"},
    LabelledKey{Key::escape, u"⎋"},
    LabelledKey{Key::home, u"↖"},
    LabelledKey{Key::end, u"↘"},
    LabelledKey{Key::pageUp, u"⇞"},
    LabelledKey{Key::pageDown, u"⇟"},
    LabelledKey{Key::leftArrow, u"←"},
    LabelledKey{Key::rightArrow, u"→"},
    LabelledKey{Key::upArrow, u"↑"},
    LabelledKey{Key::downArrow, u"↓"},
    LabelledKey{Key::keypad0, u"Keypad 0"},
    LabelledKey{Key::keypad1, u"Keypad 1"},
    LabelledKey{Key::keypad2, u"Keypad 2"},
    LabelledKey{Key::keypad3, u"Keypad 3"},
    LabelledKey{Key::keypad4, u"Keypad 4"},
    LabelledKey{Key::keypad5, u"Keypad 5"},
    LabelledKey{Key::keypad6, u"Keypad 6"},
    LabelledKey{Key::keypad7, u"Keypad 7"},
    LabelledKey{Key::keypad8, u"Keypad 8"},
    LabelledKey{Key::keypad9, u"Keypad 9"},
    LabelledKey{Key::keypadDecimal, u"Keypad ."},
    LabelledKey{Key::keypadComma, u"Keypad ,"},
    LabelledKey{Key::keypadPlus, u"Keypad +"},
    LabelledKey{Key::keypadMinus, u"Keypad −"},
    LabelledKey{Key::keypadMultiply, u"Keypad ×"},
    LabelledKey{Key::keypadDivide, u"Keypad ÷"},
    LabelledKey{Key::keypadEquals, u"Keypad ="},
    LabelledKey{Key::keypadClear, u"⌧"},
    LabelledKey{Key::keypadEnter, u"⌤"},
};

constexpr std::array functionKeys = {
    LabelledKey{Key::help, u"Help"},
    LabelledKey{Key::volumeUp, u"Volume Up"},
    LabelledKey{Key::volumeDown, u"Volume Down"},
    LabelledKey{Key::mute, u"Mute"},
    LabelledKey{Key::eisu, u"英数"},
    LabelledKey{Key::kana, u"かな"},
    LabelledKey{Key::f1, u"F1"},
    LabelledKey{Key::f2, u"F2"},
    LabelledKey{Key::f3, u"F3"},
    LabelledKey{Key::f4, u"F4"},
    LabelledKey{Key::f5, u"F5"},
    LabelledKey{Key::f6, u"F6"},
    LabelledKey{Key::f7, u"F7"},
    LabelledKey{Key::f8, u"F8"},
    LabelledKey{Key::f9, u"F9"},
    LabelledKey{Key::f10, u"F10"},
    LabelledKey{Key::f11, u"F11"},
    LabelledKey{Key::f12, u"F12"},
    LabelledKey{Key::f13, u"F13"},
    LabelledKey{Key::f14, u"F14"},
    LabelledKey{Key::f15, u"F15"},
    LabelledKey{Key::f16, u"F16"},
    LabelledKey{Key::f17, u"F17"},
    LabelledKey{Key::f18, u"F18"},
    LabelledKey{Key::f19, u"F19"},
    LabelledKey{Key::f20, u"F20"},
};

template <typename Keys>
QStringView textIn(const Keys& keys, int carbonKeyCode)
{
    const auto found = std::find_if(keys.begin(), keys.end(), [carbonKeyCode](const auto& entry) {
        return static_cast<int>(entry.key) == carbonKeyCode;
    });
    return found == keys.end() ? QStringView() : found->text;
}

} // namespace

KeyLabel keyLabel(int carbonKeyCode)
{
    using Kind = KeyLabel::Kind;
    if (const QStringView text = textIn(characterKeys, carbonKeyCode); !text.isEmpty())
        return {.text = text, .kind = Kind::character};
    if (const QStringView text = textIn(writingKeys, carbonKeyCode); !text.isEmpty())
        return {.text = text, .kind = Kind::writing};
    return {.text = textIn(functionKeys, carbonKeyCode)};
}

int carbonKeyCodeTyping(QChar character, const Keyboard& keyboard)
{
    int ansi = -1;
    for (const LabelledKey& candidate : characterKeys) {
        const int carbonKeyCode = static_cast<int>(candidate.key);
        if (keyboard.character(carbonKeyCode) == character)
            return carbonKeyCode;
        if (candidate.text == character.toUpper())
            ansi = carbonKeyCode;
    }
    return ansi;
}

} // namespace varno
