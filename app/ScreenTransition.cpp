#include "app/ScreenTransition.h"

#include <QPainter>

namespace varno {

using namespace std::chrono_literals;

ScreenTransition::ScreenTransition(QWidget* parent)
    : QWidget(parent)
    , m_motion(*this, [this](double progress) { show(progress); })
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void ScreenTransition::start(const QPixmap& previous, QWidget& next, Kind kind)
{
    finish();
    m_previous = previous;
    m_next = &next;
    m_kind = kind;
    setGeometry(parentWidget()->rect());
    raise();
    QWidget::show();
    m_motion.start({.duration = 280ms});
}

void ScreenTransition::finish()
{
    m_motion.stop();
    m_previous = {};
    hide();
    if (m_next)
        m_next->setGeometry(parentWidget()->rect());
    m_next = nullptr;
}

void ScreenTransition::show(double progress)
{
    if (progress >= 1) {
        finish();
        return;
    }
    m_progress = progress;
    if (m_kind == Kind::rise && m_next)
        m_next->move(0, qRound(height() * (1 - progress)));
    update();
}

void ScreenTransition::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setOpacity(1 - m_progress);
    const double top = m_kind == Kind::sink ? height() * m_progress : 0;
    painter.drawPixmap(QPointF(0, top), m_previous);
}

} // namespace varno
