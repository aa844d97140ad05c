#include "kit/Rule.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace varno {

double wholePixels(double thickness, double devicePixelRatio)
{
    constexpr double slack = 0.01;
    return std::max(1.0, std::floor(thickness * devicePixelRatio + slack)) / devicePixelRatio;
}

Rule::Rule(Qt::Orientation orientation, double thickness, const Ink& ink, QWidget* parent)
    : QWidget(parent)
    , m_orientation(orientation)
    , m_thickness(thickness)
    , m_ink(ink)
{
    if (orientation == Qt::Horizontal)
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    else
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
}

QSize Rule::sizeHint() const
{
    const int thickness = static_cast<int>(std::ceil(m_thickness));
    return m_orientation == Qt::Horizontal ? QSize(0, thickness) : QSize(thickness, 0);
}

void Rule::paintEvent(QPaintEvent*)
{
    const double devicePixels = m_thickness * devicePixelRatioF();
    const double drawn = wholePixels(m_thickness, devicePixelRatioF());
    QColor color = inkColor(palette(), m_ink);
    color.setAlphaF(color.alphaF() * static_cast<float>(std::min(1.0, devicePixels)));
    const QSizeF size =
        m_orientation == Qt::Horizontal ? QSizeF(width(), drawn) : QSizeF(drawn, height());
    QPainter(this).fillRect(QRectF(QPointF(), size), color);
}

} // namespace varno
