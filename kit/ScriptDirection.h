#pragma once

#include <QStringView>

class QWidget;

namespace varno {

/// The direction of most letters at the start of a text; automatic where there are none. Costs the
/// same however long the text is.
[[nodiscard]] Qt::LayoutDirection scriptDirection(QStringView text);

/// Lays a widget out in the direction of what is written in it; where there are no letters, as the
/// interface around it.
void setWrittenDirection(QWidget& widget, QStringView text);

/// Whether a text has a letter of a script that runs from right to left.
[[nodiscard]] bool hasRightToLeftLetters(QStringView text);

/// How much of a text decides its direction, in UTF-16 units.
inline constexpr qsizetype directedStart = 500;

} // namespace varno
