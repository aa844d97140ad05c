#include "reader/Surface.h"

#include "kit/Theme.h"

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
    painter.fillRect(rect(), themeColor(palette(), ColorRole::surface));
    if (m_bottomEdge == BottomEdge::ruled)
        painter.fillRect(0, height() - 1, width(), 1, themeColor(palette(), ColorRole::border));
}

} // namespace varno
