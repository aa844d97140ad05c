#include "reader/SelectionScroller.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>

namespace varno {
namespace {

constexpr std::chrono::milliseconds interval(30);
constexpr int mostPointsAtOnce = 60;

} // namespace

SelectionScroller::SelectionScroller(QScrollArea& area, QWidget& text, QObject* parent)
    : QObject(parent)
    , m_area(area)
    , m_text(text)
{
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &SelectionScroller::scroll);
}

void SelectionScroller::drag(const QPoint& position)
{
    m_pointer = m_text.mapToGlobal(position);
    if (distanceBeyondEdge() == 0) {
        m_timer.stop();
    } else if (!m_timer.isActive()) {
        m_dragged = m_text.childAt(0, 0);
        if (m_dragged)
            m_dragged->installEventFilter(this);
        m_timer.start();
    }
}

bool SelectionScroller::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonRelease || event->type() == QEvent::Hide) {
        m_timer.stop();
        watched->removeEventFilter(this);
    }
    return false;
}

int SelectionScroller::distanceBeyondEdge() const
{
    const int y = m_area.viewport()->mapFromGlobal(m_pointer).y();
    return y < 0 ? y : std::max(y - m_area.viewport()->height() + 1, 0);
}

void SelectionScroller::scroll()
{
    const int distance = distanceBeyondEdge();
    QScrollBar& bar = *m_area.verticalScrollBar();
    const int before = bar.value();
    bar.setValue(before + std::clamp(distance, -mostPointsAtOnce, mostPointsAtOnce));
    if (bar.value() == before || !m_dragged)
        return;
    QMouseEvent move(QEvent::MouseMove, m_dragged->mapFromGlobal(m_pointer), m_pointer,
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_dragged, &move);
}

} // namespace varno
