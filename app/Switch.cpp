#include "app/Switch.h"

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
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF place(QPointF(room.width(), room.height()), QSizeF(pill));
    const double round = place.height() / 2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(themeColor(palette(), ColorRole::text, 0.2 * (1 - m_knob)));
    painter.drawRoundedRect(place, round, round);
    painter.setBrush(themeColor(palette(), ColorRole::accent, m_knob));
    painter.drawRoundedRect(place, round, round);

    const double side = place.height() - 2 * margin;
    const double left = place.left() + margin + m_knob * (place.width() - 2 * margin - side);
    painter.setBrush(Qt::white);
    painter.drawEllipse(QRectF(left, place.top() + margin, side, side));

    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(themeColor(palette(), ColorRole::accent, 0.8), 1.5));
        painter.drawRoundedRect(place.adjusted(-1.25, -1.25, 1.25, 1.25), round + 1, round + 1);
    }
}

} // namespace varno
