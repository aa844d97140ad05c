#pragma once

#include <QWidget>

namespace varno {

/// The edges and corners of a window without a frame, as an invisible frame over all that it shows:
/// dragging it resizes the window.
class ResizeGrip final : public QWidget {
    Q_OBJECT

public:
    /// It follows the size of `window`; raise it above its siblings.
    explicit ResizeGrip(QWidget& window);

    bool eventFilter(QObject* window, QEvent* event) override;

protected:
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void place();
    [[nodiscard]] Qt::Edges edgesAt(const QPoint& place) const;
};

} // namespace varno
