#include "kit/ThemedText.h"

#include "kit/TextCuts.h"

#include <QCursor>
#include <QEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace varno {
namespace {

QSize roundedUp(const QSizeF& size)
{
    return {static_cast<int>(std::ceil(size.width())), static_cast<int>(std::ceil(size.height()))};
}

} // namespace

ThemedText::ThemedText(const QString& text, const TextStyle& style, Overflow overflow,
                       QWidget* parent)
    : QLabel(parent)
    , m_overflow(overflow)
{
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::NoTextInteraction);
    setSizePolicy(QSizePolicy::Preferred,
                  overflow == Overflow::wrap ? QSizePolicy::Preferred : QSizePolicy::Fixed);
    setTextStyle(style);
    setText(text);
}

void ThemedText::setText(const QString& text)
{
    QLabel::setText(shortened(text, toolTipLimit));
}

void ThemedText::setTextStyle(const TextStyle& style)
{
    m_style = style;
    m_laidOut.reset();
    setFont(varno::font(style));
    updateGeometry();
    update();
}

void ThemedText::setOpacity(double opacity)
{
    m_style.opacity = opacity;
    update();
}

bool ThemedText::isElided() const
{
    return laidOut().measure(width()).isElided;
}

QSize ThemedText::sizeHint() const
{
    const int natural = roundedUp(laidOut().measure().size).width();
    const int width = std::min(natural, maximumWidth());
    return {width, heightForWidth(width)};
}

QSize ThemedText::minimumSizeHint() const
{
    const QSize natural = sizeHint();
    if (m_overflow == Overflow::none)
        return natural;
    const int leastWidth = static_cast<int>(m_style.size * (m_overflow == Overflow::wrap ? 4 : 1));
    return {std::min(natural.width(), leastWidth), roundedUp(laidOut().measure().size).height()};
}

bool ThemedText::hasHeightForWidth() const
{
    return m_overflow == Overflow::wrap;
}

int ThemedText::heightForWidth(int width) const
{
    return roundedUp(laidOut().measure(std::min(width, maximumWidth())).size).height();
}

bool ThemedText::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip || !toolTip().isEmpty() || !isElided())
        return QLabel::event(event);
    QToolTip::showText(QCursor::pos(), plainToolTip(text()), this);
    return true;
}

void ThemedText::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const Ink ink = {.role = m_style.role, .opacity = m_style.opacity};
    block().draw(painter, rect(), visualAlignment(), inkColor(palette(), ink));
}

Qt::Alignment ThemedText::visualAlignment() const
{
    return QStyle::visualAlignment(layoutDirection(), alignment());
}

LaidOutText& ThemedText::laidOut() const
{
    return m_laidOut.of(text(), m_style, font(), m_overflow);
}

} // namespace varno
