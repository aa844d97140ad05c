#include "reader/text/AccessibleText.h"

#include "reader/text/TextSurface.h"

#include <QScrollArea>
#include <QTextBoundaryFinder>
#include <QTextLayout>

#include <algorithm>

namespace varno {
namespace {

using namespace Qt::StringLiterals;
using Boundary = QAccessible::TextBoundaryType;

TextRange cut(const TextRange& range, const TextRange& by)
{
    const qsizetype begin = std::clamp(range.begin, by.begin, by.end);
    return {.begin = begin, .end = std::clamp(range.end, begin, by.end)};
}

QTextBoundaryFinder::BoundaryType finderType(Boundary kind)
{
    switch (kind) {
    case QAccessible::WordBoundary:
        return QTextBoundaryFinder::Word;
    case QAccessible::SentenceBoundary:
        return QTextBoundaryFinder::Sentence;
    default:
        return QTextBoundaryFinder::Grapheme;
    }
}

/// A word has the blanks behind it with it.
TextRange unitWithin(const QString& text, qsizetype offset, Boundary kind)
{
    QTextBoundaryFinder finder(finderType(kind), text);
    const auto begins = [&] {
        return kind != QAccessible::WordBoundary || finder.position() <= 0 ||
               finder.position() >= text.size() ||
               finder.boundaryReasons().testFlag(QTextBoundaryFinder::StartOfItem);
    };
    finder.setPosition(offset);
    if (!finder.isAtBoundary() || !begins())
        while (finder.toPreviousBoundary() > 0 && !begins()) {
        }
    const qsizetype begin = std::max<qsizetype>(finder.position(), 0);
    finder.setPosition(begin);
    while (finder.toNextBoundary() >= 0 && !begins()) {
    }
    return {.begin = begin, .end = finder.position() < 0 ? text.size() : finder.position()};
}

TextRange unitOf(const QTextBlock& row, qsizetype offset, Boundary kind)
{
    const qsizetype length = row.length() - 1; // without what separates it from the next row
    if (kind == QAccessible::LineBoundary) {
        const QTextLine line = row.layout()->lineForTextPosition(static_cast<int>(offset));
        if (!line.isValid() || line.textStart() + line.textLength() >= length)
            return {.begin = line.isValid() ? line.textStart() : 0, .end = length + 1};
        return {.begin = line.textStart(), .end = line.textStart() + line.textLength()};
    }
    if (kind == QAccessible::ParagraphBoundary)
        return {.begin = 0, .end = length + 1};
    if (offset >= length)
        return {.begin = length, .end = length + 1};
    return unitWithin(row.text(), offset, kind);
}

} // namespace

AccessibleText::AccessibleText(TextSurface& surface)
    : m_surface(surface)
{
}

QTextDocument& AccessibleText::document() const
{
    return *m_surface.document();
}

TextRange AccessibleText::bounds() const
{
    return cut(range(), {.begin = 0, .end = document().characterCount() - 1});
}

TextRange AccessibleText::selected() const
{
    const QTextCursor cursor = m_surface.textCursor();
    return cut({.begin = cursor.selectionStart(), .end = cursor.selectionEnd()}, bounds());
}

void AccessibleText::selection(int index, int* begin, int* end) const
{
    const TextRange range = index == 0 ? selected() : bounds();
    *begin = static_cast<int>(range.begin - bounds().begin);
    *end = index == 0 ? static_cast<int>(range.end - bounds().begin) : *begin;
}

int AccessibleText::selectionCount() const
{
    return selected().begin < selected().end ? 1 : 0;
}

void AccessibleText::addSelection(int begin, int end)
{
    setSelection(0, begin, end);
}

void AccessibleText::removeSelection(int index)
{
    if (index == 0 && selectionCount() > 0)
        m_surface.setTextCursor(QTextCursor(&document()));
}

void AccessibleText::setSelection(int index, int begin, int end)
{
    if (index != 0)
        return;
    const qsizetype from = bounds().begin;
    const TextRange wanted = cut({.begin = from + begin, .end = from + end}, bounds());
    QTextCursor cursor(&document());
    cursor.setPosition(static_cast<int>(wanted.begin));
    cursor.setPosition(static_cast<int>(wanted.end), QTextCursor::KeepAnchor);
    m_surface.setTextCursor(cursor);
}

int AccessibleText::cursorPosition() const
{
    const TextRange range = bounds();
    const int position = m_surface.textCursor().position();
    return position < range.begin || position > range.end
               ? -1
               : static_cast<int>(position - range.begin);
}

void AccessibleText::setCursorPosition(int offset)
{
    setSelection(0, offset, offset);
}

QString AccessibleText::text(int begin, int end) const
{
    const qsizetype from = bounds().begin;
    const TextRange wanted = cut({.begin = from + begin, .end = from + end}, bounds());
    QString text;
    for (QTextBlock row = document().findBlock(static_cast<int>(wanted.begin));
         row.isValid() && row.position() < wanted.end; row = row.next()) {
        const TextRange part =
            cut(wanted, {.begin = row.position(), .end = row.position() + row.length() - 1});
        text += QStringView(row.text()).sliced(part.begin - row.position(), part.end - part.begin);
        if (wanted.end > part.end)
            text += u'\n';
    }
    return text.replace(QChar::LineSeparator, u'\n');
}

/// The unit that a position of the document is in.
TextRange AccessibleText::unitAt(qsizetype position, Boundary kind) const
{
    const TextRange range = bounds();
    if (kind == QAccessible::NoBoundary)
        return range;
    const qsizetype at = std::clamp(position, range.begin, range.end);
    const QTextBlock row = document().findBlock(static_cast<int>(at));
    const TextRange unit = unitOf(row, at - row.position(), kind);
    return cut({.begin = row.position() + unit.begin, .end = row.position() + unit.end}, range);
}

/// Nothing where the position is outside.
QString AccessibleText::unit(qsizetype position, Boundary kind, int* begin, int* end) const
{
    const TextRange range = bounds();
    *begin = *end = -1;
    if (position < range.begin || position > range.end)
        return {};
    const TextRange unit = unitAt(position, kind);
    *begin = static_cast<int>(unit.begin - range.begin);
    *end = static_cast<int>(unit.end - range.begin);
    return text(*begin, *end);
}

QString AccessibleText::textBeforeOffset(int offset, Boundary boundary, int* begin, int* end) const
{
    return unit(unitAt(bounds().begin + offset, boundary).begin - 1, boundary, begin, end);
}

QString AccessibleText::textAtOffset(int offset, Boundary boundary, int* begin, int* end) const
{
    return unit(bounds().begin + offset, boundary, begin, end);
}

QString AccessibleText::textAfterOffset(int offset, Boundary boundary, int* begin, int* end) const
{
    const qsizetype next = unitAt(bounds().begin + offset, boundary).end;
    return unit(next < bounds().end ? next : -1, boundary, begin, end);
}

int AccessibleText::characterCount() const
{
    return static_cast<int>(bounds().end - bounds().begin);
}

QRect AccessibleText::characterRect(int offset) const
{
    const qsizetype position = bounds().begin + offset;
    const QTextBlock row = document().findBlock(static_cast<int>(position));
    const int within = static_cast<int>(position) - row.position();
    const QTextLine line = row.isValid() ? row.layout()->lineForTextPosition(within) : QTextLine();
    if (!line.isValid())
        return {};
    const double leading = line.cursorToX(within, QTextLine::Leading);
    const double trailing = line.cursorToX(within, QTextLine::Trailing);
    const QRectF rect(std::min(leading, trailing), line.y(), std::abs(trailing - leading),
                      line.height());
    const QPoint origin = m_surface.viewport()->mapToGlobal(QPoint());
    return rect.translated(row.layout()->position()).toAlignedRect().translated(origin);
}

int AccessibleText::offsetAtPoint(const QPoint& point) const
{
    const QPoint within = m_surface.viewport()->mapFromGlobal(point);
    const TextRange range = bounds();
    const int position = m_surface.cursorForPosition(within).position();
    const bool isInside = m_surface.viewport()->rect().contains(within) &&
                          position >= range.begin && position <= range.end;
    return isInside ? static_cast<int>(position - range.begin) : -1;
}

void AccessibleText::scrollToSubstring(int begin, int end)
{
    QWidget* ancestor = m_surface.parentWidget();
    while (ancestor && !qobject_cast<QScrollArea*>(ancestor))
        ancestor = ancestor->parentWidget();
    auto* area = qobject_cast<QScrollArea*>(ancestor);
    if (!area || !area->widget())
        return;
    for (const int offset : {end, begin}) { // the begin, where there is no room for both
        const QRect place = characterRect(offset);
        const QPoint at = area->widget()->mapFromGlobal(place.center());
        area->ensureVisible(at.x(), at.y(), 0, place.height());
    }
}

QString AccessibleText::attributes(int offset, int* begin, int* end) const
{
    const TextRange range = bounds();
    const qsizetype position = range.begin + offset;
    const QTextBlock row = document().findBlock(static_cast<int>(position));
    for (auto at = row.begin(); !at.atEnd(); ++at) {
        const QTextFragment run = at.fragment();
        if (!run.contains(static_cast<int>(position)))
            continue;
        const TextRange shown =
            cut({.begin = run.position(), .end = run.position() + run.length()}, range);
        *begin = static_cast<int>(shown.begin - range.begin);
        *end = static_cast<int>(shown.end - range.begin);
        const QTextCharFormat format = run.charFormat();
        QString told = u"font-weight:"_s +
                       (format.fontWeight() > QFont::Normal ? u"bold;"_s : u"normal;"_s) +
                       u"font-style:"_s + (format.fontItalic() ? u"italic;"_s : u"normal;"_s);
        if (format.fontStrikeOut())
            told += u"text-line-through-style:solid;"_s;
        return told;
    }
    *begin = offset;
    *end = offset + 1;
    return {};
}

QRect AccessibleText::rectOf(const TextRange& positions) const
{
    const QTextBlock first = document().findBlock(static_cast<int>(positions.begin));
    const QTextBlock last =
        document().findBlock(static_cast<int>(std::max(positions.begin, positions.end - 1)));
    const QRectF rect = m_surface.rowRect(first) | m_surface.rowRect(last);
    return rect.toAlignedRect().translated(m_surface.viewport()->mapToGlobal(QPoint()));
}

} // namespace varno
