#pragma once

#include <QWidget>

namespace varno {

/// The divider beside the sidebar, wider than its line so that it can be grabbed. It announces the
/// translation of a drag.
class ResizeDivider final : public QWidget {
    Q_OBJECT

public:
    explicit ResizeDivider(QWidget* parent = nullptr);

Q_SIGNALS:
    /// The translation since the press, away from the sidebar, in points.
    void dragged(int translation);
    void dragEnded();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    double m_pressedAt = 0;
};

} // namespace varno
