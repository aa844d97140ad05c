#include "app/RowButton.h"

#include "kit/RoundedShape.h"
#include "kit/TextCuts.h"
#include "kit/Theme.h"

#include <QLayout>
#include <QPainter>

namespace varno {

RowButton::RowButton(const QString& name, QWidget* parent)
    : PressableButton(parent)
{
    setAccessibleName(shortened(name, toolTipLimit));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void RowButton::setContent(QLayout* content)
{
    setLayout(content);
    for (QWidget* part : findChildren<QWidget*>())
        part->setAttribute(Qt::WA_TransparentForMouseEvents);
}

QSize RowButton::sizeHint() const
{
    return layout()->sizeHint();
}

QSize RowButton::minimumSizeHint() const
{
    return layout()->minimumSize();
}

void RowButton::paintEvent(QPaintEvent*)
{
    if (!isEnabled() || !(underMouse() || isDown() || hasFocus()))
        return;
    QPainter painter(this);
    fillRounded(painter, rect(), 4, themeColor(palette(), ColorRole::text, hoverOpacity()));
}

} // namespace varno
