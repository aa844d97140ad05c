#pragma once

#include <QWidget>

namespace varno {

/// The line beside the sidebar, with room around it to take hold of. Reports how far the pointer
/// has come since it was pressed.
class ResizeDivider final : public QWidget {
    Q_OBJECT

public:
    explicit ResizeDivider(QWidget* parent = nullptr);

Q_SIGNALS:
    /// To the right, in points.
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
