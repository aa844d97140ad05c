#include "app/Switch.h"

#include "kit/RoundedShape.h"
#include "kit/Theme.h"

#include <QPainter>

namespace varno {
namespace {

using namespace std::chrono_literals;

constexpr QSize pill(38, 22);
constexpr double margin = 2;
constexpr QSize room(2, 2); // around the pill, for the ring of the focus

} // namespace

Switch::Switch(QWidget* parent)
    : QCheckBox(parent)
    , m_motion(*this, [this](double knob) {
        m_knob = knob;
        update();
    })
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::TabFocus);
    connect(this, &QCheckBox::toggled, this, [this](bool on) {
        const auto duration = isVisible() ? 150ms : 0ms;
        m_motion.start({.from = m_knob, .to = on ? 1.0 : 0.0, .duration = duration});
    });
}

QSize Switch::sizeHint() const
{
    return pill + 2 * room;
}

bool Switch::hitButton(const QPoint& position) const
{
    return rect().contains(position);
}

void Switch::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QRectF place(QPointF(room.width(), room.height()), QSizeF(pill));
    const double round = place.height() / 2;
    fillRounded(painter, place, round, themeColor(palette(), ColorRole::text, 0.55 * (1 - m_knob)));
    fillRounded(painter, place, round, themeColor(palette(), ColorRole::accent, m_knob));

    const double side = place.height() - 2 * margin;
    const double way = place.width() - 2 * margin - side;
    const double left = place.left() + margin + way * (isRightToLeft() ? 1 - m_knob : m_knob);
    fillRounded(painter, QRectF(left, place.top() + margin, side, side), side / 2,
                themeColor(palette(), ColorRole::background));

    const QRectF ring = QRect(QPoint(), sizeHint());
    if (hasFocus())
        outlineFocus(painter, ring, ring.height() / 2 - 0.25, palette());
}

} // namespace varno
