#include "kit/ThinScrollBar.h"

#include "kit/RoundedShape.h"
#include "kit/Theme.h"

#include <QPainter>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOptionSlider>

#include <algorithm>
#include <cmath>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

constexpr int extent = 10;
constexpr int leastThumb = 28;
constexpr int thumbInset = 2;
constexpr double pieceHeight = 90; // in pixels: the toolkit shares out from 96 on

/// A bar without buttons: the thumb has the whole of its length.
class ThinStyle final : public QProxyStyle {
public:
    using QProxyStyle::QProxyStyle;

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override
    {
        return metric == PM_ScrollBarExtent ? extent
                                            : QProxyStyle::pixelMetric(metric, option, widget);
    }

    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override
    {
        const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (control != CC_ScrollBar || !bar)
            return QProxyStyle::subControlRect(control, option, part, widget);
        const QRect all = bar->rect;
        const QRect thumb = thumbRect(*bar);
        switch (part) {
        case SC_ScrollBarSlider:
            return thumb;
        case SC_ScrollBarGroove:
            return all;
        case SC_ScrollBarSubPage:
            return {all.topLeft(), QSize(all.width(), thumb.top() - all.top())};
        case SC_ScrollBarAddPage:
            return {QPoint(all.left(), thumb.bottom() + 1), all.bottomRight()};
        default:
            return {};
        }
    }

private:
    static QRect thumbRect(const QStyleOptionSlider& bar)
    {
        const int length = bar.rect.height();
        const int range = bar.maximum - bar.minimum;
        const int whole = range + bar.pageStep;
        const int thumb = whole > 0 ? std::clamp(int(qint64(length) * bar.pageStep / whole),
                                                 std::min(leastThumb, length), length)
                                    : length;
        const int top =
            sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition, length - thumb);
        return {bar.rect.left(), bar.rect.top() + top, bar.rect.width(), thumb};
    }
};

/// Opaque.
QColor mixed(const QColor& ground, const QColor& ink, double opacity)
{
    const auto mix = [=](int below, int above) {
        return int(std::lround(below + (above - below) * opacity));
    };
    return {mix(ground.red(), ink.red()), mix(ground.green(), ink.green()),
            mix(ground.blue(), ink.blue())};
}

} // namespace

ThinScrollBar::ThinScrollBar(QWidget* parent)
    : QScrollBar(Qt::Vertical, parent)
{
    auto* thin = new ThinStyle(QStyleFactory::create(u"fusion"_s));
    thin->setParent(this);
    setStyle(thin);
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::ArrowCursor);
}

void ThinScrollBar::paintEvent(QPaintEvent* /*event*/)
{
    if (maximum() <= minimum())
        return;
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRectF thumb = QRectF(style()->subControlRect(QStyle::CC_ScrollBar, &option,
                                                        QStyle::SC_ScrollBarSlider, this))
                             .adjusted(thumbInset, thumbInset, -thumbInset, -thumbInset);
    const double opacity = isSliderDown() || underMouse() ? 0.75 : 0.55;
    paintThumb(thumb, mixed(themeColor(palette(), ColorRole::background),
                            themeColor(palette(), ColorRole::text), opacity));
}

/// In pieces that overlap by their round ends: what is taller is painted by several threads, which
/// wait for more for half a minute. On whole pixels: halves would be seen twice where they overlap.
void ThinScrollBar::paintThumb(const QRectF& place, const QColor& color)
{
    QPainter painter(this);
    const QTransform toPixels = painter.deviceTransform();
    const QRectF thumb = toPixels.inverted().mapRect(QRectF(toPixels.mapRect(place).toRect()));
    const double width = thumb.width();
    const double height = pieceHeight / devicePixelRatioF();
    for (double top = thumb.top(); top + width <= thumb.bottom(); top += height - width)
        fillRounded(painter, {thumb.left(), top, width, std::min(height, thumb.bottom() - top)},
                    width / 2, color);
}

} // namespace varno
