#include "kit/FieldFrame.h"

#include "kit/Theme.h"

#include <QPainter>
#include <QWidget>

namespace varno {

void paintFieldFrame(QWidget& field, bool isActive)
{
    constexpr double cornerRadius = 5;
    const QPalette colors = field.palette();
    QPainter painter(&field);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(themeColor(colors, isActive ? ColorRole::accent : ColorRole::border));
    painter.setBrush(themeColor(colors, ColorRole::surface));
    painter.drawRoundedRect(QRectF(field.rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius,
                            cornerRadius);
}

} // namespace varno
