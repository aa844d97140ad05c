#include "reader/text/TextSurface.h"

#include "kit/Theme.h"
#include "reader/text/Highlights.h"
#include "reader/text/SelectedText.h"

#include <QAbstractTextDocumentLayout>
#include <QDesktopServices>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QTextLayout>
#include <QToolTip>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

constexpr double highlightOpacity = 0.55;

void open(const QUrl& address)
{
    if (mayBeOpened(address.toString()))
        QDesktopServices::openUrl(address);
}

/// The rectangles of a range in one line, in the coordinates of the layout. Where directions mix,
/// what is one range in the text may be several on the screen.
QList<QRectF> rangeRects(const QTextLine& line, qsizetype begin, qsizetype end)
{
    QList<QRectF> rects;
    for (auto position = static_cast<int>(begin); position < end; ++position) {
        const double leading = line.cursorToX(position, QTextLine::Leading);
        const double trailing = line.cursorToX(position, QTextLine::Trailing);
        const QRectF rect(std::min(leading, trailing), line.y(), std::abs(trailing - leading),
                          line.height());
        if (!rects.isEmpty() && (qFuzzyCompare(rects.last().right() + 1, rect.left() + 1) ||
                                 qFuzzyCompare(rect.right() + 1, rects.last().left() + 1)))
            rects.last() |= rect;
        else
            rects.append(rect);
    }
    return rects;
}

} // namespace

TextSurface::TextSurface(QWidget* parent)
    : QTextBrowser(parent)
    , m_format(0, {})
{
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setOpenLinks(false);
    setAccessibleName(u"Entry"_s);
    viewport()->setAutoFillBackground(false);
    connect(this, &QTextBrowser::anchorClicked, this, &open);
}

void TextSurface::setFormat(const RowFormat& format)
{
    m_format = format;
    QPalette palette;
    palette.setColor(QPalette::Text, format.textColor());
    setPalette(palette);
}

void TextSurface::setHighlightText(const QString& text)
{
    if (m_highlightText == text)
        return;
    m_highlightText = text;
    viewport()->update();
}

QTextBlock TextSurface::rowAt(int y) const
{
    int first = 0;
    for (int count = document()->blockCount(); count > 1;) {
        const int half = count / 2;
        const bool isAbove = rowRect(document()->findBlockByNumber(first + half)).top() <= y;
        first += isAbove ? half : 0;
        count = isAbove ? count - half : half;
    }
    const QTextBlock row = document()->findBlockByNumber(first);
    const QTextBlock next = row.next();
    const bool nextIsNearer = next.isValid() && rowRect(next).top() - y < y - rowRect(row).bottom();
    return nextIsNearer ? next : row;
}

QRectF TextSurface::rowRect(const QTextBlock& row) const
{
    return document()->documentLayout()->blockBoundingRect(row);
}

QVariant TextSurface::loadResource(int, const QUrl&)
{
    return {};
}

QMimeData* TextSurface::createMimeDataFromSelection() const
{
    auto* plainText = new QMimeData;
    plainText->setText(selectedText(textCursor()));
    return plainText;
}

/// Keys that scroll are for whoever shows the text.
void TextSurface::keyPressEvent(QKeyEvent* event)
{
    const bool follows = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (follows || event == QKeySequence::Copy || event == QKeySequence::SelectAll)
        QTextBrowser::keyPressEvent(event);
    else
        event->ignore();
}

void TextSurface::mouseMoveEvent(QMouseEvent* event)
{
    QTextBrowser::mouseMoveEvent(event);
    if (event->buttons().testFlag(Qt::LeftButton) && textCursor().hasSelection())
        Q_EMIT selectionDragged(event->position().toPoint());
}

void TextSurface::scrollContentsBy(int, int) {}

void TextSurface::wheelEvent(QWheelEvent* event)
{
    event->ignore();
}

bool TextSurface::viewportEvent(QEvent* event)
{
    const auto* help = dynamic_cast<QHelpEvent*>(event);
    if (help && event->type() == QEvent::ToolTip && showAddress(help->pos(), help->globalPos()))
        return true;
    return QTextBrowser::viewportEvent(event);
}

/// A link shows where it leads, every unusual character spelled out.
bool TextSurface::showAddress(const QPoint& position, const QPoint& globalPosition)
{
    const QString address = anchorAt(position);
    if (address.isEmpty())
        return false;
    QToolTip::showText(globalPosition, QUrl(address).toString(QUrl::FullyEncoded), viewport());
    return true;
}

void TextSurface::paintEvent(QPaintEvent* event)
{
    {
        QPainter painter(viewport());
        painter.setClipRect(event->rect());
        for (QTextBlock row = rowAt(event->rect().top()); row.isValid(); row = row.next()) {
            if (rowRect(row).top() > event->rect().bottom())
                break;
            if (!m_highlightText.isEmpty())
                paintHighlights(painter, row);
            if (row.blockFormat().hasProperty(rowMarkWidth))
                paintMark(painter, row);
        }
    }
    QTextBrowser::paintEvent(event);
}

void TextSurface::paintHighlights(QPainter& painter, const QTextBlock& row) const
{
    const QTextLayout& layout = *row.layout();
    const QString text = row.text();
    static const QColor color =
        standardColor(themePalette(AppTheme::cream), StandardColor::yellow, highlightOpacity);
    for (const TextRange& range : highlightRanges(text, m_highlightText)) {
        int index = layout.lineForTextPosition(int(range.begin)).lineNumber();
        for (; index < layout.lineCount(); ++index) {
            const QTextLine line = layout.lineAt(index);
            if (line.textStart() >= range.end)
                break;
            const qsizetype begin = std::max<qsizetype>(range.begin, line.textStart());
            const qsizetype end =
                std::min<qsizetype>(range.end, line.textStart() + line.textLength());
            for (const QRectF& rect : rangeRects(line, begin, end))
                painter.fillRect(rect.translated(layout.position()), color);
        }
    }
}

void TextSurface::paintMark(QPainter& painter, const QTextBlock& row) const
{
    const QTextBlockFormat format = row.blockFormat();
    const QString mark = format.stringProperty(rowMark);
    if (mark.isEmpty() || row.layout()->lineCount() == 0)
        return;
    const bool isCentred = format.boolProperty(rowMarkCentred);
    const bool isRightToLeft = format.rightMargin() > 0;
    const double frameWidth = format.doubleProperty(rowMarkWidth);
    const QFont font = m_format.markFont(mark);
    const double markWidth = QFontMetricsF(font).horizontalAdvance(mark);
    const double free = frameWidth - markWidth;
    const double inset = isCentred ? free / 2 : std::max(free, 0.0); // from the column's edge
    const double x = isRightToLeft ? viewport()->width() - inset - markWidth : inset;
    const QTextLine line = row.layout()->lineAt(0);
    painter.setFont(font);
    painter.setLayoutDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    painter.setPen(isCentred ? m_format.textColor() : m_format.numberColor());
    painter.drawText(QPointF(x, row.layout()->position().y() + line.y() + line.ascent()), mark);
}

} // namespace varno
