#include "reader/text/RowPainter.h"

#include "kit/RoundedShape.h"
#include "kit/Rule.h"

#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace varno {
namespace {

constexpr double groundPadding = 8;
constexpr double groundRadius = 6;
constexpr double barWidth = 2;
constexpr double thumbHeight = 3;
constexpr double faintLine = 0.5;

bool isOf(const QTextBlock& row, RowForm form)
{
    return row.isValid() && formOf(row.blockFormat()) == form;
}

bool isInBlockOf(const QTextBlock& row, const QTextBlock& other)
{
    return row.blockFormat().intProperty(rowBlock) == other.blockFormat().intProperty(rowBlock);
}

} // namespace

RowPainter::RowPainter(QPainter& painter, const PageLayout& layout, const RowFormat& format,
                       const QPalette& palette)
    : m_painter(painter)
    , m_layout(layout)
    , m_format(format)
    , m_palette(palette)
{
}

void RowPainter::paint(const QTextBlock& row) const
{
    const QTextBlockFormat format = row.blockFormat();
    switch (formOf(format)) {
    case RowForm::text:
        if (format.hasProperty(rowMarkWidth))
            paintMark(row);
        break;
    case RowForm::code:
        paintGround(row);
        break;
    case RowForm::quote:
        paintBars(row);
        break;
    case RowForm::cell:
        if (format.intProperty(rowNumber) == 0)
            paintTableLine(row);
        break;
    case RowForm::rule:
        paintRule(row);
        break;
    case RowForm::hidden:
        break;
    }
}

void RowPainter::paintMark(const QTextBlock& row) const
{
    const QTextBlockFormat format = row.blockFormat();
    const QString mark = format.stringProperty(rowMark);
    if (mark.isEmpty() || row.layout()->lineCount() == 0)
        return;
    const bool isCentred = format.boolProperty(rowMarkCentred);
    const bool isRightToLeft = format.rightMargin() > 0;
    const double frameWidth = format.doubleProperty(rowMarkWidth);
    const QFont font = m_format.markFont(mark);
    const double markWidth = QFontMetricsF(font).horizontalAdvance(mark);
    const double free = frameWidth - markWidth;
    const double inset = isCentred ? free / 2 : std::max(free, 0.0); // from the column's edge
    const double width = m_layout.documentSize().width();
    const double x = isRightToLeft ? width - inset - markWidth : inset;
    const QTextLine line = row.layout()->lineAt(0);
    m_painter.setFont(font);
    m_painter.setLayoutDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    m_painter.setPen(isCentred ? m_format.textColor() : m_format.numberColor());
    m_painter.drawText(QPointF(x, row.layout()->position().y() + line.y() + line.ascent()), mark);
}

/// One ground for all that stands behind one fence: each row paints its part, down to the next.
void RowPainter::paintGround(const QTextBlock& row) const
{
    const bool isFirst = !isOf(row.previous(), RowForm::code);
    const bool isLast = !isOf(row.next(), RowForm::code);
    QRectF ground = m_layout.blockBoundingRect(row);
    if (isFirst)
        ground.setTop(ground.top() - groundPadding);
    ground.setBottom(isLast ? ground.bottom() + groundPadding
                            : m_layout.blockBoundingRect(row.next()).top());
    const QRectF part(QPointF(0, std::floor(ground.top())),
                      QPointF(ground.right(), std::floor(ground.bottom())));
    // Corners of the ends alone: what is beyond them is cut off.
    const QRectF shape =
        part.adjusted(0, isFirst ? 0 : -2 * groundRadius, 0, isLast ? 0 : 2 * groundRadius);
    m_painter.save();
    m_painter.setClipRect(part, Qt::IntersectClip);
    fillRounded(m_painter, shape, groundRadius, themeColor(m_palette, ColorRole::surface));
    m_painter.restore();
}

void RowPainter::paintBars(const QTextBlock& row) const
{
    QRectF rect = m_layout.blockBoundingRect(row);
    const bool goesOn = isOf(row.next(), RowForm::quote) && isInBlockOf(row, row.next());
    if (goesOn)
        rect.setBottom(m_layout.blockBoundingRect(row.next()).top());
    const QColor color = themeColor(m_palette, ColorRole::border);
    const int depth = std::min(row.blockFormat().intProperty(rowNumber), deepestQuote);
    for (int level = 0; level < depth; ++level) {
        const bool isRightToLeft = row.blockFormat().rightMargin() > 0;
        const double x = level * quoteIndent;
        m_painter.fillRect(QRectF(isRightToLeft ? rect.right() - x - barWidth : x, rect.top(),
                                  barWidth, rect.height()),
                           color);
    }
}

void RowPainter::paintTableLine(const QTextBlock& cell) const
{
    const QRectF line = m_layout.tableLine(cell);
    const bool isHeader = cell.blockFormat().boolProperty(rowIsHeader);
    const double opacity = m_painter.opacity();
    m_painter.setOpacity(isHeader ? opacity : opacity * faintLine);
    fillLine(line.left(), line.bottom(), line.width());
    m_painter.setOpacity(opacity);
    const auto [overflow, offset] = m_layout.tableOverflow(cell);
    if (!isHeader || overflow <= 0)
        return;
    // How much of a wide table is in sight, and which part.
    const double visible = line.width() / (line.width() + overflow);
    const QRectF thumb(line.left() + offset * visible, line.bottom() - thumbHeight + 1,
                       line.width() * visible, thumbHeight);
    fillRounded(m_painter, thumb, thumbHeight / 2, themeColor(m_palette, ColorRole::border));
}

void RowPainter::paintRule(const QTextBlock& row) const
{
    const QRectF rect = m_layout.blockBoundingRect(row);
    fillLine(rect.left(), rect.center().y(), rect.width());
}

void RowPainter::fillLine(double x, double y, double length) const
{
    const QTransform toDevice = m_painter.deviceTransform();
    const double ratio = toDevice.m22();
    const double thickness = wholePixels(1, ratio);
    const double top = (std::round(y * ratio + toDevice.dy()) - toDevice.dy()) / ratio;
    m_painter.fillRect(QRectF(x, top, length, thickness), themeColor(m_palette, ColorRole::border));
}

} // namespace varno
