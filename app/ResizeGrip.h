#pragma once

#include <QWidget>

namespace varno {

/// An invisible strip along an edge, or in a corner, of a window without a frame; dragging it
/// resizes the window.
class ResizeGrip final : public QWidget {
    Q_OBJECT

public:
    /// `edges` are those that it moves: one, or two that meet. It follows the size of `window`;
    /// raise it above its siblings.
    ResizeGrip(Qt::Edges edges, QWidget& window);

    bool eventFilter(QObject* window, QEvent* event) override;

protected:
    void mousePressEvent(QMouseEvent* event) override;

private:
    void place();

    Qt::Edges m_edges;
};

} // namespace varno
