#include "kit/SelectableText.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace varno {

SelectableText::SelectableText(const QString& text, const TextStyle& style, Overflow overflow,
                               QWidget* parent)
    : ThemedText(text, style, overflow, parent)
{
    setCursor(Qt::IBeamCursor);
}

void SelectableText::setText(const QString& text)
{
    const QString before = this->text();
    ThemedText::setText(text);
    if (before != this->text())
        clearSelection();
}

TextRange SelectableText::selection() const
{
    return {.begin = std::min(m_anchor, m_position), .end = std::max(m_anchor, m_position)};
}

void SelectableText::select(qsizetype anchor, qsizetype position)
{
    if (anchor == m_anchor && position == m_position)
        return;
    m_anchor = anchor;
    m_position = position;
    update();
    if (hasSelection())
        Q_EMIT selected();
}

qsizetype SelectableText::positionAt(const QMouseEvent& event) const
{
    return block().positionAt(event.position(), rect(), visualAlignment());
}

void SelectableText::mousePressEvent(QMouseEvent* event)
{
    event->setAccepted(event->button() == Qt::LeftButton);
    if (!event->isAccepted())
        return;
    const qsizetype position = positionAt(*event);
    m_isDragged = !m_sinceDoubleClick.isValid() ||
                  m_sinceDoubleClick.hasExpired(QApplication::doubleClickInterval());
    m_sinceDoubleClick.invalidate();
    if (m_isDragged)
        select(event->modifiers().testFlag(Qt::ShiftModifier) ? m_anchor : position, position);
    else
        select(0, text().size());
}

void SelectableText::mouseDoubleClickEvent(QMouseEvent* event)
{
    event->setAccepted(event->button() == Qt::LeftButton);
    if (!event->isAccepted())
        return;
    const TextRange word = block().wordAt(positionAt(*event));
    select(word.begin, word.end);
    m_isDragged = false;
    m_sinceDoubleClick.start();
}

void SelectableText::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons().testFlag(Qt::LeftButton) && m_isDragged)
        select(m_anchor, positionAt(*event));
}

void SelectableText::mouseReleaseEvent(QMouseEvent* event)
{
    event->setAccepted(event->button() == Qt::LeftButton);
    m_isDragged = false;
    if (event->isAccepted() && hasSelection())
        Q_EMIT selectionEnded();
}

void SelectableText::paintEvent(QPaintEvent* event)
{
    if (hasSelection()) {
        QPainter painter(this);
        block().fillRange(painter, rect(), visualAlignment(), selection(),
                          palette().color(QPalette::Highlight));
    }
    ThemedText::paintEvent(event);
}

} // namespace varno
