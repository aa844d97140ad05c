#include "kit/PlainButton.h"

#include "kit/RoundedShape.h"
#include "kit/TextCuts.h"
#include "platform/KeyLabel.h"

#include <QCursor>
#include <QFocusEvent>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

int roundedUp(double length)
{
    return static_cast<int>(std::ceil(length));
}

/// Lets a ring stand over the window, or over what scrolls, and not in the place of the button,
/// which may have no room for it.
class RingStyle final : public QProxyStyle {
public:
    using QProxyStyle::QProxyStyle;

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override
    {
        return hint == SH_FocusFrame_AboveWidget
                   ? 1
                   : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

/// Stands around its widget, so that it covers nothing of a text without padding.
class FocusRing final : public QFocusFrame {
public:
    explicit FocusRing(QWidget& widget)
    {
        auto* ring = new RingStyle(QStyleFactory::create(u"fusion"_s));
        ring->setParent(this);
        setStyle(ring);
        setWidget(&widget);
        show(); // also where the button has yet to come into view
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        outlineFocus(painter, rect(), 5, palette());
    }
};

} // namespace

PlainButton::PlainButton(const QString& text, const ButtonStyle& style, QWidget* parent)
    : PressableButton(parent)
{
    setFocusPolicy(Qt::TabFocus);
    setButtonStyle(style);
    setText(text);
}

PlainButton::PlainButton(Symbol symbol, const ButtonStyle& style, QWidget* parent)
    : PlainButton(symbol, QString(), style, parent)
{
}

PlainButton::PlainButton(Symbol symbol, const QString& text, const ButtonStyle& style,
                         QWidget* parent)
    : PlainButton(text, style, parent)
{
    m_symbol = symbol;
}

PlainButton::~PlainButton()
{
    delete m_focusRing;
}

void PlainButton::setText(const QString& text)
{
    PressableButton::setText(shortened(text, toolTipLimit));
    setShortcut({}); // that of a letter behind an "&"
    setAccessibleName(text.isEmpty() ? spelledToolTip() : PressableButton::text());
}

void PlainButton::setButtonStyle(const ButtonStyle& style)
{
    m_style = style;
    m_laidOut.reset();
    setFont(varno::font(style.text));
    const bool elides = style.overflow != Overflow::none && style.frame.isEmpty();
    setSizePolicy(elides ? QSizePolicy::Preferred : QSizePolicy::Fixed, QSizePolicy::Fixed);
    updateGeometry();
    update();
}

QSize PlainButton::sizeHint() const
{
    return sizeFor(laidOut().measure().size.width());
}

QSize PlainButton::minimumSizeHint() const
{
    const double natural = laidOut().measure().size.width();
    return sizeFor(m_style.overflow == Overflow::none ? natural
                                                      : std::min(natural, m_style.text.size));
}

QSize PlainButton::sizeFor(double textWidth) const
{
    if (!m_style.frame.isEmpty())
        return m_style.frame;
    const double symbolHeight = m_symbol ? m_style.symbol.size : 0;
    const double textHeight = text().isEmpty() ? 0 : laidOut().measure().size.height();
    return {roundedUp(leadingWidth() + textWidth) + 2 * m_style.horizontal,
            roundedUp(std::max(symbolHeight, textHeight)) + 2 * m_style.vertical};
}

double PlainButton::leadingWidth() const
{
    if (!m_symbol)
        return 0;
    return m_style.symbol.size + (text().isEmpty() ? 0 : m_style.spacing);
}

LaidOutText& PlainButton::laidOut() const
{
    const Overflow overflow = m_style.overflow == Overflow::none ? Overflow::none : Overflow::elide;
    return m_laidOut.of(text(), m_style.text, font(), overflow);
}

/// How much there is for the text.
double PlainButton::textWidth() const
{
    return width() - 2 * m_style.horizontal - leadingWidth();
}

/// In the panel Control does what Command does.
QString PlainButton::spelledToolTip() const
{
    return spelledOut(toolTip(), u"Ctrl");
}

bool PlainButton::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTipChange) {
        setAccessibleDescription(spelledToolTip());
        if (text().isEmpty())
            setAccessibleName(spelledToolTip());
    }
    if (event->type() == QEvent::ToolTip && spelledToolTip() != toolTip()) {
        const QString keys = spelledToolTip().section(u'(', -1).remove(u')');
        QToolTip::showText(QCursor::pos(), toolTip() + u'\n' + keys, this);
        return true;
    }
    if (event->type() != QEvent::ToolTip || !toolTip().isEmpty() ||
        !laidOut().measure(textWidth()).isElided)
        return PressableButton::event(event);
    QToolTip::showText(QCursor::pos(), plainToolTip(text()), this);
    return true;
}

void PlainButton::focusInEvent(QFocusEvent* event)
{
    switch (event->reason()) {
    case Qt::TabFocusReason:
    case Qt::BacktabFocusReason:
    case Qt::ShortcutFocusReason:
        m_focusByKeyboard = true;
        break;
    case Qt::ActiveWindowFocusReason:
    case Qt::PopupFocusReason:
        break; // it is back, as it was
    default:
        m_focusByKeyboard = false;
    }
    if (m_focusByKeyboard && !m_focusRing) {
        m_focusRing = new FocusRing(*this);
    }
    PressableButton::focusInEvent(event);
}

void PlainButton::focusOutEvent(QFocusEvent* event)
{
    delete m_focusRing;
    PressableButton::focusOutEvent(event);
}

void PlainButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    paintBackground(painter);
    paintContent(painter);
}

void PlainButton::paintBackground(QPainter& painter) const
{
    const QRectF place = rect();
    if (m_style.fill)
        fillRounded(painter, place, m_style.radius, inkColor(palette(), *m_style.fill));
    if (hasRoom() && isEnabled() && (underMouse() || isDown()))
        fillRounded(painter, place, m_style.radius,
                    themeColor(palette(), ColorRole::text, hoverOpacity()));
    if (m_style.outline)
        outlineRounded(painter, place, m_style.radius, m_style.outlineWidth,
                       inkFor(*m_style.outline));
}

void PlainButton::paintContent(QPainter& painter) const
{
    const TextBlock& text = laidOut().block(textWidth());
    const double leading = leadingWidth();
    const QRectF inner = QRectF(rect()).adjusted(m_style.horizontal, 0, -m_style.horizontal, 0);
    const double spare = inner.width() - leading - text.size().width();
    double left = inner.left();
    if (m_style.alignment.testFlag(Qt::AlignRight))
        left += spare;
    else if (m_style.alignment.testFlag(Qt::AlignHCenter))
        left += spare / 2;
    if (m_symbol) {
        const double side = m_style.symbol.size;
        const QRectF box = mirrored({left, inner.center().y() - side / 2, side, side});
        drawSymbol(painter, *m_symbol, box,
                   inkFor({.role = m_style.symbol.role, .opacity = m_style.symbol.opacity}),
                   m_style.symbol.weight);
    }
    const QRectF place(left + leading, inner.top(), text.size().width(), inner.height());
    text.draw(painter, mirrored(place), Qt::AlignLeft | Qt::AlignVCenter,
              inkFor({.role = m_style.text.role, .opacity = m_style.text.opacity}));
}

/// Where a place is that was reckoned from the leading edge.
QRectF PlainButton::mirrored(QRectF place) const
{
    if (isRightToLeft())
        place.moveLeft(width() - place.right());
    return place;
}

bool PlainButton::hasRoom() const
{
    return !m_style.frame.isEmpty() || m_style.horizontal > 0 || m_style.outline || m_style.fill;
}

QColor PlainButton::inkFor(Ink ink) const
{
    if (!isEnabled())
        ink.opacity *= 0.4;
    else if (isDown() && !hasRoom())
        ink.opacity *= 0.6;
    else if (underMouse() && ink.opacity < 0.8)
        ink.opacity += (1 - ink.opacity) * 0.4;
    else if (underMouse() && !hasRoom())
        ink.opacity *= 0.8;
    return inkColor(palette(), ink);
}

} // namespace varno
