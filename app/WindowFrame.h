#pragma once

#include <QWidget>

namespace varno {

/// The frame of a window that the platform gives none: over all that it shows, a line around it in
/// the border colour, and edges and corners that resize it when they are dragged.
class WindowFrame final : public QWidget {
    Q_OBJECT

public:
    /// It follows the size of `window`; raise it above its siblings.
    explicit WindowFrame(QWidget& window);

    bool eventFilter(QObject* window, QEvent* event) override;

protected:
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void place();
    [[nodiscard]] Qt::Edges edgesAt(const QPoint& place) const;
};

} // namespace varno
