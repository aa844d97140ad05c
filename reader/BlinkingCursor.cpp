#include "reader/BlinkingCursor.h"

#include "kit/Theme.h"

#include <QPainter>

namespace varno {

using namespace std::chrono_literals;

BlinkingCursor::BlinkingCursor(QWidget* parent)
    : QWidget(parent)
    , m_blink(*this, [this](double opacity) {
        m_opacity = opacity;
        update();
    })
{
    setFixedSize(2, 18);
    m_blink.start({.from = 1, .to = 0, .duration = 500ms, .repeat = Motion::Repeat::backAndForth});
}

void BlinkingCursor::paintEvent(QPaintEvent* /*event*/)
{
    QPainter(this).fillRect(rect(),
                            standardColor(palette(), StandardColor::primary, 0.6 * m_opacity));
}

} // namespace varno
