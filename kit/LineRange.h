#pragma once

#include <QList>
#include <QRectF>

class QTextLine;

namespace varno {

/// The rectangles of a range of the text in one line, in the coordinates of the layout. Where
/// directions mix, what is one range in the text may be several on the screen.
[[nodiscard]] QList<QRectF> rangeRects(const QTextLine& line, qsizetype begin, qsizetype end);

} // namespace varno
