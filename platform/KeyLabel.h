#pragma once

#include <QString>

namespace varno {

class Keyboard;

/// The label of a key.
struct KeyLabel {
    enum class Kind {
        character, ///< the text is the ANSI character: the user's layout goes first
        writing,   ///< what every program is written in with, like Return, arrows and the keypad
        function,
    };

    QStringView text;   ///< a symbol for many; empty for a code that is no key's
    QStringView pcName; ///< in words, as Qt names it in the texts of key sequences
    Kind kind = Kind::function;
};

[[nodiscard]] KeyLabel keyLabel(int carbonKeyCode);

/// What a character key types on `keyboard`, in upper case; its ANSI character if that is not
/// known.
[[nodiscard]] QString characterLabel(int carbonKeyCode, const Keyboard& keyboard);

/// The same, but the ANSI character also for one that is not Latin: desktops look for shortcuts by
/// Latin letters.
[[nodiscard]] QString latinLabel(int carbonKeyCode, const Keyboard& keyboard);

/// The modifiers of a Carbon mask, like "⌥⌘".
[[nodiscard]] QString modifierSymbols(int carbonModifiers);

/// A combination by the names of a PC's keys, like "Alt+Super+F".
[[nodiscard]] QString pcName(int carbonKeyCode, int carbonModifiers, const Keyboard& keyboard);

/// A text with the symbols of keys in it in words: "⌥⌘F" is "Alt+Super+F". `command` is what
/// Command is called.
[[nodiscard]] QString spelledOut(QString text, QStringView command = u"Super");

/// The key that types the character, or does on an ANSI keyboard where none does.
[[nodiscard]] int carbonKeyCodeTyping(QChar character, const Keyboard& keyboard);

} // namespace varno
