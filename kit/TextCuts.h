#pragma once

#include "kit/TextLimits.h"

#include <QStringList>

namespace varno {

/// The end of a user-perceived character at or before `position`, and at or after it. Positions
/// count UTF-16 units.
[[nodiscard]] qsizetype characterBoundaryBefore(QStringView text, qsizetype position);
[[nodiscard]] qsizetype characterBoundaryAfter(QStringView text, qsizetype position);

/// Whether a line ends there.
[[nodiscard]] bool breaksLine(QChar character);

/// How long a text takes to be laid out, as a number of Latin letters that take as long.
[[nodiscard]] qsizetype layoutCost(QStringView text);

/// How much of a text may be laid out at that cost, in whole characters.
[[nodiscard]] qsizetype lengthWithin(QStringView text, qsizetype cost);

/// How much of a line goes into its first row. That depends on what precedes the cut alone.
[[nodiscard]] qsizetype rowLength(QStringView line, const RowLimit& limit);

/// The text, or as much of it as the limit allows and "…".
[[nodiscard]] QString shortened(const QString& text, const TextLimit& limit);

/// How many entries of a list are shown, each shortened to `entry`.
[[nodiscard]] qsizetype shownCount(const QStringList& list, const ListLimit& limit,
                                   const TextLimit& entry);

} // namespace varno
