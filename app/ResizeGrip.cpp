#include "app/ResizeGrip.h"

#include "platform/WindowPlacement.h"

#include <QEvent>
#include <QMouseEvent>
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

ResizeGrip::ResizeGrip(Qt::Edges edges, QWidget& window)
    : QWidget(&window)
    , m_edges(edges)
{
    setCursor(cursorFor(edges));
    window.installEventFilter(this);
    place();
}

bool ResizeGrip::eventFilter(QObject* window, QEvent* event)
{
    if (window == parent() && event->type() == QEvent::Resize)
        place();
    return QWidget::eventFilter(window, event);
}

void ResizeGrip::place()
{
    const QRect whole = parentWidget()->rect();
    const bool isCorner =
        m_edges & (Qt::LeftEdge | Qt::RightEdge) && m_edges & (Qt::TopEdge | Qt::BottomEdge);
    const int depth = isCorner ? cornerSide : breadth;
    QRect strip = whole;
    if (m_edges & Qt::LeftEdge)
        strip.setWidth(depth);
    if (m_edges & Qt::RightEdge)
        strip.setLeft(whole.right() + 1 - depth);
    if (m_edges & Qt::TopEdge)
        strip.setHeight(depth);
    if (m_edges & Qt::BottomEdge)
        strip.setTop(whole.bottom() + 1 - depth);
    setGeometry(strip);
}

void ResizeGrip::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && isPointerPressed())
        startResize(*window()->windowHandle(), m_edges);
}

} // namespace varno
