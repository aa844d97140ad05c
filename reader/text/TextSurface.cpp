#include "reader/text/TextSurface.h"

#include "kit/LineRange.h"
#include "kit/Theme.h"
#include "reader/text/Highlights.h"
#include "reader/text/PageAccessible.h"
#include "reader/text/RowPainter.h"
#include "reader/text/SelectedHtml.h"
#include "reader/text/SelectedText.h"

#include <QDesktopServices>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QTextLayout>
#include <QToolTip>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

constexpr double highlightOpacity = 0.55;
/// How far above its text a row paints.
constexpr int reach = 8;

void open(const QUrl& address)
{
    if (mayBeOpened(address.toString()))
        QDesktopServices::openUrl(address);
}

std::unique_ptr<QMimeData> copied(const QTextCursor& cursor)
{
    auto data = std::make_unique<QMimeData>();
    data->setText(selectedTextWithLinks(cursor));
    data->setHtml(selectedHtml(cursor));
    return data;
}

} // namespace

TextSurface::TextSurface(QWidget* parent)
    : QTextBrowser(parent)
    , m_layout(new PageLayout(document()))
    , m_format(0, {})
{
    document()->setDocumentLayout(m_layout);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setOpenLinks(false);
    setAccessibleName(tr("Entry"));
    installPageAccessible(*this);
    viewport()->setAutoFillBackground(false);
    viewport()->setCursor(Qt::IBeamCursor);
    connect(this, &QTextBrowser::highlighted, this, [this](const QUrl& link) {
        if (link.isEmpty()) // the toolkit would make it an arrow
            viewport()->setCursor(Qt::IBeamCursor);
    });
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
    return m_layout->rowAt(y);
}

QRectF TextSurface::rowRect(const QTextBlock& row) const
{
    return m_layout->blockBoundingRect(row);
}

QVariant TextSurface::loadResource(int, const QUrl&)
{
    return {};
}

QMimeData* TextSurface::createMimeDataFromSelection() const
{
    return copied(textCursor()).release();
}

std::unique_ptr<QMimeData> TextSurface::all() const
{
    QTextCursor cursor(document());
    cursor.select(QTextCursor::Document);
    return copied(cursor);
}

QString TextSurface::focusedLink() const
{
    const QTextCursor cursor = textCursor();
    return cursor.hasSelection() ? cursor.charFormat().anchorHref() : QString();
}

/// The menu is made by whoever shows the text.
void TextSurface::contextMenuEvent(QContextMenuEvent* event)
{
    event->ignore();
}

/// Tab goes from link to link.
bool TextSurface::focusNextPrevChild(bool next)
{
    const bool isMoved = QTextBrowser::focusNextPrevChild(next);
    if (hasFocus() && !focusedLink().isEmpty()) {
        QTextCursor link = textCursor();
        const QRect end = cursorRect(link);
        link.setPosition(link.anchor());
        Q_EMIT linkFocused(end | cursorRect(link));
    }
    return isMoved;
}

/// Other keys are for whoever shows the text.
void TextSurface::keyPressEvent(QKeyEvent* event)
{
    const bool follows = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (follows || (event == QKeySequence::Copy && textCursor().hasSelection()))
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

/// What goes sideways moves a table that is wider than the column; all else is for whoever shows
/// the text.
void TextSurface::wheelEvent(QWheelEvent* event)
{
    const QPoint delta = event->pixelDelta().isNull() ? event->angleDelta() : event->pixelDelta();
    const bool isSideways = std::abs(delta.x()) > std::abs(delta.y());
    event->setAccepted(isSideways && m_layout->scrollTable(event->position(), -delta.x()));
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
        const RowPainter rows(painter, *m_layout, m_format, palette());
        for (QTextBlock row = rowAt(event->rect().top() - reach); row.isValid(); row = row.next()) {
            if (rowRect(row).top() > event->rect().bottom() + reach)
                break;
            rows.paint(row);
            if (!m_highlightText.isEmpty())
                paintHighlights(painter, row);
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

} // namespace varno
