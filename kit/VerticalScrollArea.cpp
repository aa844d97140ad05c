#include "kit/VerticalScrollArea.h"

#include "kit/ThinScrollBar.h"

namespace varno {

VerticalScrollArea::VerticalScrollArea(QWidget* parent)
    : QScrollArea(parent)
{
    setVerticalScrollBar(new ThinScrollBar);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    viewport()->setAutoFillBackground(false);
}

void VerticalScrollArea::setContent(QWidget& content)
{
    setWidget(&content);
    content.setAutoFillBackground(false); // the scroll area switched it on
}

} // namespace varno
