#include "reader/TabOrder.h"

#include <QWidget>

#include <utility>

namespace varno {

void setTabOrderAfter(QWidget& before, const QList<QWidget*>& widgets)
{
    // What cannot have the focus cannot be given a place.
    const Qt::FocusPolicy policy = before.focusPolicy();
    before.setFocusPolicy(Qt::TabFocus);
    QWidget* last = &before;
    for (QWidget* widget : widgets) {
        if (widget->focusPolicy() != Qt::NoFocus)
            QWidget::setTabOrder(std::exchange(last, widget), widget);
    }
    before.setFocusPolicy(policy);
}

} // namespace varno
