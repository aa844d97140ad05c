#pragma once

#include <QObject>
#include <QPointF>
#include <QRect>

namespace varno {

class LayerSurface;
class WaylandPointer;

/// The pointer moves a surface, or its edges, until its button is up; then this deletes itself.
class LayerDrag final : public QObject {
    Q_OBJECT

public:
    /// Without edges the surface is moved. It owns this. The pointer is pressed on it, and outlives
    /// it.
    LayerDrag(LayerSurface& surface, WaylandPointer& pointer, Qt::Edges edges);

private:
    void move(const QPointF& way);
    void follow();
    [[nodiscard]] QRect placeAfter(const QPoint& way) const;

    LayerSurface& m_surface;
    Qt::Edges m_edges;
    QRect m_start;
    QPointF m_startedAt; ///< in the room
    QPointF m_pointer;
};

} // namespace varno
