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

/// Whether a unit of UTF-16 may belong to an emoji that has an image of its own.
[[nodiscard]] bool isPartOfPicture(QChar unit);

/// The end of a user-perceived character at or before `position`, and at or after it. Positions
/// count UTF-16 units.
[[nodiscard]] qsizetype characterBoundaryBefore(QStringView text, qsizetype position);
[[nodiscard]] qsizetype characterBoundaryAfter(QStringView text, qsizetype position);

/// What stands for a character in a text document, which keeps some characters for itself.
[[nodiscard]] QChar documentCharacter(QChar character);

} // namespace varno
