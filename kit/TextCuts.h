#pragma once

#include "kit/TextLimits.h"

#include <QStringList>

namespace varno {

/// The boundary between grapheme clusters at or before `position`, and at or after it. Positions
/// count UTF-16 units.
[[nodiscard]] qsizetype characterBoundaryBefore(QStringView text, qsizetype position);
[[nodiscard]] qsizetype characterBoundaryAfter(QStringView text, qsizetype position);

/// Whether a line ends at that character.
[[nodiscard]] bool breaksLine(QChar character);

/// The time that the layout of a text takes, as the number of Latin letters that take as long.
[[nodiscard]] qsizetype layoutCost(QStringView text);

/// The length of the longest beginning of a text within that layout cost, in whole grapheme
/// clusters.
[[nodiscard]] qsizetype lengthWithin(QStringView text, qsizetype cost);

/// The length of the first row of a line. It depends only on what precedes the cut.
[[nodiscard]] qsizetype rowLength(QStringView line, const RowLimit& limit);

/// The text, or as much of it as `limit` allows and "…".
[[nodiscard]] QString shortened(const QString& text, const TextLimit& limit);

/// The number of entries of a list that are shown, each shortened to `entry`.
[[nodiscard]] qsizetype shownCount(const QStringList& list, const ListLimit& limit,
                                   const TextLimit& entry);

} // namespace varno
