#pragma once

#include <QStringView>

namespace varno {

class Keyboard;

/// The label of a key.
struct KeyLabel {
    enum class Kind {
        character, ///< the text is the ANSI character: the user's layout goes first
        writing,   ///< what every program is written in with, like Return, arrows and the keypad
        function,
    };

    QStringView text; ///< empty for a code that is no key's
    Kind kind = Kind::function;
};

[[nodiscard]] KeyLabel keyLabel(int carbonKeyCode);

/// The key that types the character, or does on an ANSI keyboard where none does.
[[nodiscard]] int carbonKeyCodeTyping(QChar character, const Keyboard& keyboard);

} // namespace varno
