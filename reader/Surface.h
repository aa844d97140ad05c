#pragma once

#include <QWidget>

namespace varno {

/// A widget with the theme's surface colour as background, and optionally a hairline along its
/// bottom edge.
class Surface : public QWidget {
    Q_OBJECT

public:
    enum class BottomEdge { plain, ruled };

    explicit Surface(BottomEdge bottomEdge, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    BottomEdge m_bottomEdge;
};

} // namespace varno
