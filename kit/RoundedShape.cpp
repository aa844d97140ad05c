#include "kit/RoundedShape.h"

#include "kit/Theme.h"

#include <QPainter>
#include <QPainterPath>

namespace varno {
namespace {

QRectF inset(const QRectF& place, double by)
{
    return place.adjusted(by, by, -by, -by);
}

} // namespace

void fillRounded(QPainter& painter, const QRectF& place, double radius, const QColor& color)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(place, radius, radius);
}

void outlineRounded(QPainter& painter, const QRectF& place, double radius, double width,
                    const QColor& color, const QBrush& ground)
{
    const double half = width / 2;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, width));
    painter.setBrush(ground);
    painter.drawRoundedRect(inset(place, half), radius - half, radius - half);
}

void outlineFocus(QPainter& painter, const QRectF& place, double radius, const QPalette& palette)
{
    outlineRounded(painter, place, radius, 1.5, themeColor(palette, ColorRole::accent, 0.8));
}

void clipRounded(QPainter& painter, const QRectF& place, double radius, double width)
{
    const double half = width / 2;
    QPainterPath path;
    path.addRoundedRect(inset(place, half), radius - half, radius - half);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(path);
}

} // namespace varno
