#pragma once

#include <QWidget>

namespace varno {

/// Something on the theme's surface colour, by choice with a hairline along its bottom edge.
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
