#include "kit/SymbolView.h"

#include <QPainter>

#include <cmath>

namespace varno {
namespace {

bool pointsSideways(Symbol symbol)
{
    return symbol == Symbol::chevronRight || symbol == Symbol::arrowUpLeft;
}

} // namespace

SymbolView::SymbolView(Symbol symbol, const SymbolStyle& style, QWidget* parent)
    : QWidget(parent)
    , m_symbol(symbol)
    , m_style(style)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize SymbolView::sizeHint() const
{
    const int side = static_cast<int>(std::ceil(m_style.size));
    return {side, side};
}

void SymbolView::paintEvent(QPaintEvent*)
{
    QRectF box(0, 0, m_style.size, m_style.size);
    box.moveCenter(QRectF(rect()).center());
    QPainter painter(this);
    const QColor color = inkColor(palette(), {.role = m_style.role, .opacity = m_style.opacity});
    if (isRightToLeft() && pointsSideways(m_symbol)) {
        painter.translate(width(), 0);
        painter.scale(-1, 1);
    }
    drawSymbol(painter, m_symbol, box, color, m_style.weight);
}

} // namespace varno
