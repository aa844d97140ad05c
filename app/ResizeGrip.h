#pragma once

#include <QWidget>

namespace varno {

/// A strip or corner along the edge of a window without a frame, where the mouse takes hold to
/// resize it. Nothing of it is seen but the pointer.
class ResizeGrip final : public QWidget {
    Q_OBJECT

public:
    /// `edges` are those that it moves: one, or two that meet. Stands above what its siblings are
    /// when it is raised, and follows the size of `window`.
    ResizeGrip(Qt::Edges edges, QWidget& window);

    bool eventFilter(QObject* window, QEvent* event) override;

protected:
    void mousePressEvent(QMouseEvent* event) override;

private:
    void place();

    Qt::Edges m_edges;
};

} // namespace varno
