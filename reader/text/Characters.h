#pragma once

#include <QStringView>

namespace varno {

/// Whether a character is a blank within a line.
[[nodiscard]] constexpr bool isBlank(QChar character)
{
    return character == u' ' || character == u'\t';
}

[[nodiscard]] QStringView withoutLeadingBlanks(QStringView line);

/// How often a line begins with that mark.
[[nodiscard]] qsizetype repetitions(QStringView line, QChar mark);

/// Whether the first character has a numeric value in any script ("3", "٣", "三", "Ⅷ", "½").
[[nodiscard]] bool beginsWithNumeral(QStringView text);

/// The character that replaces one in a text document, which reserves some for itself.
[[nodiscard]] QChar documentCharacter(QChar character);

} // namespace varno
