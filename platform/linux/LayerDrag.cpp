#include "platform/linux/LayerDrag.h"

#include "platform/linux/LayerSurface.h"
#include "platform/linux/WaylandPointer.h"

#include <algorithm>

namespace varno {
namespace {

/// `value` itself where the limits leave no room.
int within(int least, int value, int most)
{
    return std::max(least, std::min(value, most));
}

} // namespace

LayerDrag::LayerDrag(LayerSurface& surface, WaylandPointer& pointer, Qt::Edges edges)
    : QObject(&surface)
    , m_surface(surface)
    , m_edges(edges)
    , m_start(surface.place())
    , m_startedAt(m_start.topLeft() + pointer.position())
    , m_pointer(m_startedAt)
{
    connect(&pointer, &WaylandPointer::moved, this, &LayerDrag::move);
    connect(&pointer, &WaylandPointer::released, this, &QObject::deleteLater);
    connect(&surface, &LayerSurface::arrived, this, &LayerDrag::follow);
    pointer.tellMotions();
}

/// It stops at the edges of the screen, and is told to have gone on.
void LayerDrag::move(const QPointF& way)
{
    const QSize room = m_surface.room().size();
    m_pointer += way;
    m_pointer.setX(std::clamp(m_pointer.x(), 0.0, qreal(room.width())));
    m_pointer.setY(std::clamp(m_pointer.y(), 0.0, qreal(room.height())));
    follow();
}

/// Once for each picture on the screen.
void LayerDrag::follow()
{
    if (!m_surface.isMoving())
        m_surface.setPlace(placeAfter((m_pointer - m_startedAt).toPoint()));
}

QRect LayerDrag::placeAfter(const QPoint& way) const
{
    const QSize room = m_surface.room().size();
    const QSize least = m_surface.leastSize();
    QRect place = m_start;
    if (!m_edges)
        place.moveTo(within(0, m_start.left() + way.x(), room.width() - m_start.width()),
                     within(0, m_start.top() + way.y(), room.height() - m_start.height()));
    if (m_edges & Qt::LeftEdge)
        place.setLeft(within(0, m_start.left() + way.x(), m_start.right() + 1 - least.width()));
    if (m_edges & Qt::TopEdge)
        place.setTop(within(0, m_start.top() + way.y(), m_start.bottom() + 1 - least.height()));
    if (m_edges & Qt::RightEdge)
        place.setWidth(
            within(least.width(), m_start.width() + way.x(), room.width() - m_start.left()));
    if (m_edges & Qt::BottomEdge)
        place.setHeight(
            within(least.height(), m_start.height() + way.y(), room.height() - m_start.top()));
    return place;
}

} // namespace varno
