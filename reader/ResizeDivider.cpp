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
    QPainter(this).fillRect(QRectF(0, 0, thickness, height()),
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
    if (event->buttons() & Qt::LeftButton)
        Q_EMIT dragged(qRound(event->globalPosition().x() - m_pressedAt));
}

void ResizeDivider::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        Q_EMIT dragEnded();
}

} // namespace varno
