#include "reader/WrappingHStack.h"

#include <QEvent>
#include <QLayoutItem>
#include <QStyle>

#include <algorithm>
#include <cstdlib>

namespace varno {
namespace {

/// As a layout would measure it that has so much room.
QSize measuredSize(QWidget* widget, int available)
{
    const QWidgetItem item(widget);
    const QSize wanted = item.sizeHint();
    return {std::max(std::min(wanted.width(), available), item.minimumSize().width()),
            wanted.height()};
}

/// An item of the strip as its arithmetic sees it.
struct WrappingItem {
    int width = 0;
    bool equalsLast = false; ///< the list's last item equals it, as the last one does itself
};

/// Where each item stands, from the leading edge and from the top. Rows are filled one after the
/// other; an item that does not fit goes to the next row, the very first one too. An item that
/// equals the last one is taken for it: what follows starts again at the leading edge of the first
/// row.
QList<QPoint> wrappedPositions(const QList<WrappingItem>& items, int available,
                               const WrappingLengths& lengths = {})
{
    QList<QPoint> positions;
    int width = 0; // both count downwards from the leading top corner
    int height = 0;
    for (const WrappingItem& item : items) {
        if (std::abs(width - item.width) > available) {
            width = 0;
            height -= lengths.rowHeight + lengths.rowGap;
        }
        positions.append({-width, -height});
        width = item.equalsLast ? 0 : width - item.width - lengths.itemGap;
        if (item.equalsLast)
            height = 0;
    }
    return positions;
}

} // namespace

void WrappingRows::setChildren(const QList<Child>& children)
{
    for (const Child& old : std::as_const(m_children)) {
        old.widget->hide();
        old.widget->deleteLater(); // it may be calling us
    }
    m_children = children;
    for (const Child& child : children) {
        child.widget->setParent(this);
        child.widget->show();
    }
    layOut();
    updateGeometry();
}

QList<QRect> WrappingRows::place(int available) const
{
    QList<WrappingItem> items;
    QList<QRect> rects;
    for (const Child& child : m_children) {
        rects.append({QPoint(), measuredSize(child.widget, available)});
        items.append({.width = rects.constLast().width(), .equalsLast = child.equalsLast});
    }
    const QList<QPoint> positions = wrappedPositions(items, available);
    for (qsizetype i = 0; i < rects.size(); ++i)
        rects[i].moveTopLeft(positions.at(i));
    return rects;
}

void WrappingRows::layOut()
{
    const QList<QRect> rects = place(width());
    for (qsizetype i = 0; i < rects.size(); ++i)
        m_children.at(i).widget->setGeometry(
            QStyle::visualRect(layoutDirection(), rect(), rects.at(i)));
}

int WrappingRows::heightForWidth(int width) const
{
    int height = 0;
    for (const QRect& item : place(width))
        height = std::max(height, item.y() + item.height());
    return height;
}

QSize WrappingRows::sizeHint() const
{
    return {width(), heightForWidth(width())};
}

QSize WrappingRows::minimumSizeHint() const
{
    return {0, 0};
}

bool WrappingRows::event(QEvent* event)
{
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::LayoutDirectionChange) {
        layOut();
        updateGeometry();
    }
    return QWidget::event(event);
}

void WrappingRows::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    layOut();
}

} // namespace varno
