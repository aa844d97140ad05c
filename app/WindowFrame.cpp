#include "app/WindowFrame.h"

#include "kit/Rule.h"
#include "platform/WindowPlacement.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWindow>

namespace varno {
namespace {

constexpr int breadth = 4;
constexpr int cornerSide = 10;

Qt::CursorShape cursorFor(Qt::Edges edges)
{
    if (edges == (Qt::LeftEdge | Qt::TopEdge) || edges == (Qt::RightEdge | Qt::BottomEdge))
        return Qt::SizeFDiagCursor;
    if (edges == (Qt::RightEdge | Qt::TopEdge) || edges == (Qt::LeftEdge | Qt::BottomEdge))
        return Qt::SizeBDiagCursor;
    return edges & (Qt::LeftEdge | Qt::RightEdge) ? Qt::SizeHorCursor : Qt::SizeVerCursor;
}

} // namespace

WindowFrame::WindowFrame(QWidget& window)
    : QWidget(&window)
{
    setMouseTracking(true);
    window.installEventFilter(this);
    place();
}

bool WindowFrame::eventFilter(QObject* window, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        place();
    return QWidget::eventFilter(window, event);
}

void WindowFrame::place()
{
    resize(parentWidget()->size());
    QRegion frame = QRegion(rect()) - rect().adjusted(breadth, breadth, -breadth, -breadth);
    QRect corner(0, 0, cornerSide, cornerSide);
    for (const bool atRight : {false, true})
        for (const bool atBottom : {false, true}) {
            corner.moveLeft(atRight ? width() - cornerSide : 0);
            corner.moveTop(atBottom ? height() - cornerSide : 0);
            frame += corner;
        }
    setMask(frame);
}

/// One, or two that meet.
Qt::Edges WindowFrame::edgesAt(const QPoint& place) const
{
    const auto edges = [&](int depth) {
        Qt::Edges found;
        found.setFlag(Qt::LeftEdge, place.x() < depth);
        found.setFlag(Qt::RightEdge, place.x() >= width() - depth);
        found.setFlag(Qt::TopEdge, place.y() < depth);
        found.setFlag(Qt::BottomEdge, place.y() >= height() - depth);
        return found;
    };
    const Qt::Edges corner = edges(cornerSide);
    return corner & (Qt::LeftEdge | Qt::RightEdge) && corner & (Qt::TopEdge | Qt::BottomEdge)
               ? corner
               : edges(breadth);
}

void WindowFrame::mouseMoveEvent(QMouseEvent* event)
{
    setCursor(cursorFor(edgesAt(event->position().toPoint())));
}

void WindowFrame::paintEvent(QPaintEvent*)
{
    const double line = wholePixels(1, devicePixelRatioF());
    const QRectF inside = QRectF(rect()).adjusted(line, line, -line, -line);
    const QColor color = themeColor(palette(), ColorRole::border);
    QPainter painter(this);
    painter.fillRect(QRectF(0, 0, width(), line), color);
    painter.fillRect(QRectF(0, inside.bottom(), width(), line), color);
    painter.fillRect(QRectF(0, 0, line, height()), color);
    painter.fillRect(QRectF(inside.right(), 0, line, height()), color);
}

void WindowFrame::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && isPointerPressed())
        startResize(*window()->windowHandle(), edgesAt(event->position().toPoint()));
}

} // namespace varno
