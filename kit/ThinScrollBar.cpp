#include "kit/ThinScrollBar.h"

#include "kit/RoundedShape.h"
#include "kit/Theme.h"

#include <QPainter>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOptionSlider>

#include <algorithm>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

constexpr int extent = 10;
constexpr int leastThumb = 28;
constexpr int thumbInset = 2;

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
    const bool strong = isSliderDown() || underMouse();
    QPainter painter(this);
    fillRounded(painter, thumb, thumb.width() / 2,
                themeColor(palette(), ColorRole::text, strong ? 0.75 : 0.55));
}

} // namespace varno
