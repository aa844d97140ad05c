#include "reader/Surface.h"

#include "kit/Rule.h"

#include <QPainter>

namespace varno {

Surface::Surface(BottomEdge bottomEdge, QWidget* parent)
    : QWidget(parent)
    , m_bottomEdge(bottomEdge)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void Surface::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const double thickness = wholePixels(1, devicePixelRatioF());
    painter.fillRect(rect(), themeColor(palette(), ColorRole::surface));
    if (m_bottomEdge == BottomEdge::ruled)
        painter.fillRect(QRectF(0, height() - thickness, width(), thickness),
                         themeColor(palette(), ColorRole::border));
}

} // namespace varno
