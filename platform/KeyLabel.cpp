#include "platform/KeyLabel.h"

#include "platform/CarbonModifiers.h"
#include "platform/Key.h"
#include "platform/Keyboard.h"

#include <QCoreApplication>
#include <QList>

#include <algorithm>
#include <array>
#include <optional>

namespace varno {
namespace {

struct LabelledKey {
    Key key{};
    QStringView text;
    QStringView pcName{}; ///< empty: the same
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
    LabelledKey{Key::returnKey, u"↩", u"Return"},
    LabelledKey{Key::tab, u"⇥", u"Tab"},
    LabelledKey{Key::space, u"Space"},
    LabelledKey{Key::deleteKey, u"⌫", u"Backspace"},
    LabelledKey{Key::forwardDelete, u"⌦", u"Del"},
    LabelledKey{Key::escape, u"⎋", u"Esc"},
    LabelledKey{Key::home, u"↖", u"Home"},
    LabelledKey{Key::end, u"↘", u"End"},
    LabelledKey{Key::pageUp, u"⇞", u"PgUp"},
    LabelledKey{Key::pageDown, u"⇟", u"PgDown"},
    LabelledKey{Key::leftArrow, u"←", u"Left"},
    LabelledKey{Key::rightArrow, u"→", u"Right"},
    LabelledKey{Key::upArrow, u"↑", u"Up"},
    LabelledKey{Key::downArrow, u"↓", u"Down"},
    LabelledKey{Key::keypad0, u"Keypad 0", u"Num+0"},
    LabelledKey{Key::keypad1, u"Keypad 1", u"Num+1"},
    LabelledKey{Key::keypad2, u"Keypad 2", u"Num+2"},
    LabelledKey{Key::keypad3, u"Keypad 3", u"Num+3"},
    LabelledKey{Key::keypad4, u"Keypad 4", u"Num+4"},
    LabelledKey{Key::keypad5, u"Keypad 5", u"Num+5"},
    LabelledKey{Key::keypad6, u"Keypad 6", u"Num+6"},
    LabelledKey{Key::keypad7, u"Keypad 7", u"Num+7"},
    LabelledKey{Key::keypad8, u"Keypad 8", u"Num+8"},
    LabelledKey{Key::keypad9, u"Keypad 9", u"Num+9"},
    LabelledKey{Key::keypadDecimal, u"Keypad .", u"Num+."},
    LabelledKey{Key::keypadComma, u"Keypad ,", u"Num+,"},
    LabelledKey{Key::keypadPlus, u"Keypad +", u"Num++"},
    LabelledKey{Key::keypadMinus, u"Keypad −", u"Num+-"},
    LabelledKey{Key::keypadMultiply, u"Keypad ×", u"Num+*"},
    LabelledKey{Key::keypadDivide, u"Keypad ÷", u"Num+/"},
    LabelledKey{Key::keypadEquals, u"Keypad =", u"Num+="},
    LabelledKey{Key::keypadClear, u"⌧", u"Clear"},
    LabelledKey{Key::keypadEnter, u"⌤", u"Num+Enter"},
};

constexpr std::array functionKeys = {
    LabelledKey{Key::help, u"Help"},
    LabelledKey{Key::volumeUp, u"Volume Up"},
    LabelledKey{Key::volumeDown, u"Volume Down"},
    LabelledKey{Key::mute, u"Mute", u"Volume Mute"},
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

struct LabelledModifier {
    int carbon = 0;
    QStringView symbol;
    QStringView pcName;
};

/// In the order in which they are shown.
constexpr std::array modifierLabels = {
    LabelledModifier{carbonModifier::control, u"⌃", u"Ctrl"},
    LabelledModifier{carbonModifier::option, u"⌥", u"Alt"},
    LabelledModifier{carbonModifier::shift, u"⇧", u"Shift"},
    LabelledModifier{carbonModifier::command, u"⌘", u"Super"},
    LabelledModifier{carbonModifier::function, u"\U0001F310\uFE0E", u"Fn"},
};

/// The PC's names above that are words, for translators.
[[maybe_unused]] constexpr std::array words = {QT_TRANSLATE_NOOP("varno::KeyLabel", "Ctrl"),
                                               QT_TRANSLATE_NOOP("varno::KeyLabel", "Alt"),
                                               QT_TRANSLATE_NOOP("varno::KeyLabel", "Shift"),
                                               QT_TRANSLATE_NOOP("varno::KeyLabel", "Super"),
                                               QT_TRANSLATE_NOOP("varno::KeyLabel", "Fn"),
                                               QT_TRANSLATE_NOOP("varno::KeyLabel", "Return"),
                                               QT_TRANSLATE_NOOP("varno::KeyLabel", "Tab"),
                                               QT_TRANSLATE_NOOP("varno::KeyLabel", "Backspace"),
                                               QT_TRANSLATE_NOOP("varno::KeyLabel", "Del"),
                                               QT_TRANSLATE_NOOP("varno::KeyLabel", "Esc"),
                                               QT_TRANSLATE_NOOP("varno::KeyLabel", "Home"),
                                               QT_TRANSLATE_NOOP("varno::KeyLabel", "End"),
                                               QT_TRANSLATE_NOOP("varno::KeyLabel", "PgUp"),
                                               QT_TRANSLATE_NOOP("varno::KeyLabel", "PgDown"),
                                               QT_TRANSLATE_NOOP("varno::KeyLabel", "Left"),
                                               QT_TRANSLATE_NOOP("varno::KeyLabel", "Right"),
                                               QT_TRANSLATE_NOOP("varno::KeyLabel", "Up"),
                                               QT_TRANSLATE_NOOP("varno::KeyLabel", "Down")};

QString translated(QStringView pcName)
{
    return QCoreApplication::translate("varno::KeyLabel", pcName.toLatin1());
}

template <typename Keys>
std::optional<KeyLabel> labelIn(const Keys& keys, int carbonKeyCode, KeyLabel::Kind kind)
{
    const auto found = std::find_if(keys.begin(), keys.end(), [carbonKeyCode](const auto& entry) {
        return static_cast<int>(entry.key) == carbonKeyCode;
    });
    if (found == keys.end())
        return std::nullopt;
    return KeyLabel{.text = found->text,
                    .pcName = found->pcName.isEmpty() ? found->text : found->pcName,
                    .kind = kind};
}

bool isLatin(char32_t character)
{
    const QChar::Script script = QChar::script(character);
    return script == QChar::Script_Latin || script == QChar::Script_Common;
}

} // namespace

KeyLabel keyLabel(int carbonKeyCode)
{
    using Kind = KeyLabel::Kind;
    if (const auto label = labelIn(characterKeys, carbonKeyCode, Kind::character))
        return *label;
    if (const auto label = labelIn(writingKeys, carbonKeyCode, Kind::writing))
        return *label;
    return labelIn(functionKeys, carbonKeyCode, Kind::function).value_or(KeyLabel{});
}

QString characterLabel(int carbonKeyCode, const Keyboard& keyboard)
{
    const QString typed = keyboard.character(carbonKeyCode);
    if (typed.isEmpty())
        return keyLabel(carbonKeyCode).text.toString();
    const QString upper = typed.toUpper();
    return upper.size() == typed.size() ? upper : typed; // "ß" is one key, "SS" looks like two
}

QString latinLabel(int carbonKeyCode, const Keyboard& keyboard)
{
    const QString typed = characterLabel(carbonKeyCode, keyboard);
    const QList<uint> characters = typed.toUcs4();
    return characters.size() == 1 && isLatin(characters.constFirst())
               ? typed
               : keyLabel(carbonKeyCode).text.toString();
}

QString modifierSymbols(int carbonModifiers)
{
    QString symbols;
    for (const LabelledModifier& modifier : modifierLabels)
        if ((carbonModifiers & modifier.carbon) != 0)
            symbols += modifier.symbol;
    return symbols;
}

QString pcName(int carbonKeyCode, int carbonModifiers, const Keyboard& keyboard)
{
    QString name;
    for (const LabelledModifier& modifier : modifierLabels)
        if ((carbonModifiers & modifier.carbon) != 0)
            name += modifier.pcName.toString() + u'+';
    const KeyLabel label = keyLabel(carbonKeyCode);
    return name + (label.kind == KeyLabel::Kind::character ? latinLabel(carbonKeyCode, keyboard)
                                                           : label.pcName.toString());
}

QString spelledOut(QString text, QStringView command)
{
    for (const LabelledModifier& modifier : modifierLabels) {
        const bool isCommand = modifier.carbon == carbonModifier::command;
        text.replace(modifier.symbol.toString(),
                     translated(isCommand ? command : modifier.pcName) + u'+');
    }
    for (const LabelledKey& key : writingKeys)
        if (key.text.size() == 1)
            text.replace(key.text.front(), translated(key.pcName));
    return text;
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
