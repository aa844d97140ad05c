#include "app/CloseButton.h"

#include "kit/RoundedShape.h"
#include "kit/Symbol.h"
#include "kit/Theme.h"

#include <QHoverEvent>
#include <QPainter>

namespace varno {
namespace {

// Within the margins of all screens.
constexpr int side = 16;
constexpr int inset = CloseButton::reach - side;
constexpr double symbolSide = 8;
constexpr int upperEdge = 28; ///< how far down the pointer reveals it

} // namespace

CloseButton::CloseButton(QWidget& window)
    : PressableButton(&window)
{
    setFocusPolicy(Qt::TabFocus);
    setToolTip(tr("Hide"));
    setAccessibleName(toolTip());
    resize(side, side);
    place();
    window.setAttribute(Qt::WA_Hover);
    window.installEventFilter(this);
}

/// Answers the hovering itself, for which the toolkit would paint the whole window.
bool CloseButton::eventFilter(QObject* window, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (const auto* hover = dynamic_cast<QHoverEvent*>(event)) {
        setRevealed(type != QEvent::HoverLeave && hover->position().y() < upperEdge);
        return true;
    }
    if (type == QEvent::Hide)
        setRevealed(false);
    if (type == QEvent::Resize)
        place();
    return PressableButton::eventFilter(window, event);
}

void CloseButton::place()
{
    move(isRightToLeft() ? inset : parentWidget()->width() - inset - side, inset);
}

void CloseButton::setRevealed(bool isRevealed)
{
    if (m_isRevealed == isRevealed)
        return;
    m_isRevealed = isRevealed;
    update();
}

void CloseButton::changeEvent(QEvent* event)
{
    PressableButton::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange)
        place();
}

void CloseButton::paintEvent(QPaintEvent*)
{
    if (!m_isRevealed && !hasFocus())
        return;
    QPainter painter(this);
    const bool isStrong = underMouse() || isDown() || hasFocus();
    fillRounded(painter, rect(), side / 2.0,
                themeColor(palette(), ColorRole::text, (isStrong ? 2 : 1) * hoverOpacity()));
    if (hasFocus())
        outlineFocus(painter, rect(), side / 2.0, palette());
    const double margin = (side - symbolSide) / 2;
    drawSymbol(painter, Symbol::xmark, QRectF(rect()).adjusted(margin, margin, -margin, -margin),
               themeColor(palette(), ColorRole::text, isStrong ? 0.8 : 0.5), QFont::Medium);
}

} // namespace varno
