#include "kit/PressableButton.h"

#include <QKeyEvent>

namespace varno {

PressableButton::PressableButton(QWidget* parent)
    : QAbstractButton(parent)
{
    setAttribute(Qt::WA_Hover);
}

void PressableButton::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QAbstractButton::keyPressEvent(event);
        return;
    }
    event->accept();
    if (!event->isAutoRepeat())
        click();
}

} // namespace varno
