#pragma once

#include <QStringView>

namespace varno {

/// Of those between the words of a line.
[[nodiscard]] constexpr bool isBlank(QChar character)
{
    return character == u' ' || character == u'\t';
}

[[nodiscard]] QStringView withoutLeadingBlanks(QStringView line);

/// Whether the first character has a numeric value in any script ("3", "٣", "三", "Ⅷ", "½").
[[nodiscard]] bool beginsWithNumeral(QStringView text);

/// What stands for a character in a text document, which keeps some characters for itself.
[[nodiscard]] QChar documentCharacter(QChar character);

} // namespace varno
