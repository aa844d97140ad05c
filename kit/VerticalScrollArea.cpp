#include "kit/VerticalScrollArea.h"

#include "kit/ScrollKeys.h"
#include "kit/ThinScrollBar.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>

namespace varno {
namespace {

constexpr int aroundFocus = 8; // room for its ring, and a little more

} // namespace

VerticalScrollArea::VerticalScrollArea(QWidget* parent)
    : QScrollArea(parent)
{
    setVerticalScrollBar(new ThinScrollBar);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    viewport()->setAutoFillBackground(false);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, const QWidget* focus) {
        if (focus && widget() && widget()->isAncestorOf(focus))
            showPart(*focus, focus->rect());
    });
}

void VerticalScrollArea::setContent(QWidget& content)
{
    setWidget(&content);
    content.setAutoFillBackground(false); // the scroll area switched it on
}

void VerticalScrollArea::showPart(const QWidget& owner, const QRect& part)
{
    const QRect room = viewport()->rect();
    const QRect place = part.translated(owner.mapTo(viewport(), QPoint()));
    const bool isTooHigh = place.height() + 2 * aroundFocus > room.height();
    if (isTooHigh && place.intersects(room))
        return;
    const QPoint middle = owner.mapTo(widget(), part.center());
    ensureVisible(0, middle.y(), 0, place.height() / 2 + aroundFocus);
}

/// Without what the toolkit does here: it would show the place of the cursor in a text.
bool VerticalScrollArea::focusNextPrevChild(bool next)
{
    return QAbstractScrollArea::focusNextPrevChild(next); // NOLINT(bugprone-parent-virtual-call)
}

void VerticalScrollArea::keyPressEvent(QKeyEvent* event)
{
    const auto action = scrollAction(*event);
    event->setAccepted(action.has_value());
    if (action)
        verticalScrollBar()->triggerAction(*action);
}

} // namespace varno
