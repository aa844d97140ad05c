#include "reader/ResizeDivider.h"

#include "kit/Rule.h"

#include <QMouseEvent>
#include <QPainter>

namespace varno {
namespace {

constexpr int lineWidth = 1;
constexpr int grabWidth = 7;

} // namespace

ResizeDivider::ResizeDivider(QWidget* parent)
    : QWidget(parent)
{
    setFixedWidth(grabWidth);
    setCursor(Qt::SplitHCursor);
}

void ResizeDivider::paintEvent(QPaintEvent* /*event*/)
{
    const double thickness = wholePixels(lineWidth, devicePixelRatioF());
    const double left = isRightToLeft() ? width() - thickness : 0;
    QPainter(this).fillRect(QRectF(left, 0, thickness, height()),
                            themeColor(palette(), ColorRole::border));
}

void ResizeDivider::mousePressEvent(QMouseEvent* event)
{
    event->setAccepted(event->button() == Qt::LeftButton);
    if (event->isAccepted())
        m_pressedAt = event->globalPosition().x();
}

void ResizeDivider::mouseMoveEvent(QMouseEvent* event)
{
    const double way = event->globalPosition().x() - m_pressedAt;
    if (event->buttons() & Qt::LeftButton)
        Q_EMIT dragged(qRound(isRightToLeft() ? -way : way));
}

void ResizeDivider::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        Q_EMIT dragEnded();
}

} // namespace varno
