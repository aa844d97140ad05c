#include "kit/FieldFrame.h"

#include "kit/RoundedShape.h"
#include "kit/Theme.h"

#include <QPainter>
#include <QWidget>

namespace varno {

void paintFieldFrame(QWidget& field, bool isActive)
{
    constexpr double cornerRadius = 5.5;
    const QPalette colors = field.palette();
    QPainter painter(&field);
    outlineRounded(painter, field.rect(), cornerRadius, 1,
                   themeColor(colors, isActive ? ColorRole::accent : ColorRole::border),
                   themeColor(colors, ColorRole::surface));
}

} // namespace varno
