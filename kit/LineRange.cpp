#include "kit/LineRange.h"

#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace varno {

QList<QRectF> rangeRects(const QTextLine& line, qsizetype begin, qsizetype end)
{
    QList<QRectF> rects;
    for (auto position = static_cast<int>(begin); position < end; ++position) {
        const double leading = line.cursorToX(position, QTextLine::Leading);
        const double trailing = line.cursorToX(position, QTextLine::Trailing);
        const QRectF rect(std::min(leading, trailing), line.y(), std::abs(trailing - leading),
                          line.height());
        if (!rects.isEmpty() && (qFuzzyCompare(rects.last().right() + 1, rect.left() + 1) ||
                                 qFuzzyCompare(rect.right() + 1, rects.last().left() + 1)))
            rects.last() |= rect;
        else
            rects.append(rect);
    }
    return rects;
}

} // namespace varno
