#include "kit/PressableButton.h"

#include "kit/ThemedText.h"

#include <QCursor>
#include <QKeyEvent>
#include <QToolTip>

#include <algorithm>

namespace varno {

PressableButton::PressableButton(QWidget* parent)
    : QAbstractButton(parent)
{
    setAttribute(Qt::WA_Hover);
}

bool PressableButton::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        const QList<ThemedText*> texts = findChildren<ThemedText*>();
        const auto elided = std::ranges::find_if(texts, &ThemedText::isElided);
        if (elided != texts.end()) {
            QToolTip::showText(QCursor::pos(), plainToolTip((*elided)->text()), this);
            return true;
        }
    }
    return QAbstractButton::event(event);
}

void PressableButton::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        event->accept();
        if (!event->isAutoRepeat())
            click();
        break;
    case Qt::Key_Space:
        QAbstractButton::keyPressEvent(event);
        break;
    default: // the toolkit would take arrows for Tab
        if (autoExclusive())
            QAbstractButton::keyPressEvent(event);
        else
            event->ignore();
    }
}

} // namespace varno
