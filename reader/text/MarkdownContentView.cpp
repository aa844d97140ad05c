#include "reader/text/MarkdownContentView.h"

#include "core/Appearance.h"
#include "reader/text/SelectedText.h"

#include <QAbstractTextDocumentLayout>

#include <cmath>

namespace varno {
namespace {

/// How long writing a page may keep the main thread at a time.
constexpr std::chrono::milliseconds slice(10);

constexpr int initialFontSize = pointSize(FontSize::medium);

} // namespace

MarkdownContentView::MarkdownContentView(QWidget* parent)
    : QWidget(parent)
    , m_surface(this)
    , m_writer(*m_surface.document(), RowFormat(initialFontSize, Qt::black))
{
    m_surface.setFormat(m_writer.format());
    setFocusProxy(&m_surface);
    setFixedHeight(0);
    m_continuation.setSingleShot(true);
    connect(&m_continuation, &QTimer::timeout, this, [this] { write(); });
    connect(m_surface.document()->documentLayout(),
            &QAbstractTextDocumentLayout::documentSizeChanged, this,
            &MarkdownContentView::adjustHeight);
    connect(&m_surface, &TextSurface::selectionDragged, this,
            &MarkdownContentView::selectionDragged);
    connect(&m_surface, &TextSurface::linkFocused, this, &MarkdownContentView::linkFocused);
    connect(&m_surface, &TextSurface::selectionChanged, this, [this] {
        if (hasSelection())
            Q_EMIT selected();
    });
}

bool MarkdownContentView::showsNothing(QStringView text)
{
    RowReader reader(text);
    while (const auto row = reader.next()) {
        const bool isDrawn = row->isVerbatim() || row->start.form == RowForm::rule;
        if (isDrawn || !plainText(styledText(row->text)).trimmed().isEmpty())
            return false;
    }
    return true;
}

void MarkdownContentView::setText(QStringView text)
{
    clearSelection();
    reviseText(text);
}

void MarkdownContentView::reviseText(QStringView text)
{
    m_textLength = text.size();
    m_writer.setText(text);
    write();
}

void MarkdownContentView::appendText(QStringView piece)
{
    m_textLength += piece.size();
    m_writer.appendText(piece);
    write();
}

/// What is on screen is there again at once, at its new size.
void MarkdownContentView::setFontSize(int points)
{
    if (points == m_writer.format().fontSize())
        return;
    const int lastOnScreen = m_surface.rowAt(visibleRegion().boundingRect().bottom()).blockNumber();
    const RowFormat& format = m_writer.format();
    setFormat(RowFormat(points, format.textColor(), format.direction()), lastOnScreen + 1);
}

void MarkdownContentView::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    const RowFormat& format = m_writer.format();
    if (event->type() != QEvent::LayoutDirectionChange || layoutDirection() == format.direction())
        return;
    setFormat(RowFormat(format.fontSize(), format.textColor(), layoutDirection()));
}

/// Writes the page anew, and keeps what is selected.
void MarkdownContentView::setFormat(const RowFormat& format, qsizetype atLeast)
{
    const Selection selection = this->selection();
    m_writer.setFormat(format);
    m_surface.setFormat(m_writer.format());
    write(atLeast);
    select(selection);
}

void MarkdownContentView::setTextColor(const QColor& color)
{
    if (color == m_writer.format().textColor())
        return;
    const Selection selection = this->selection();
    m_writer.setTextColor(color);
    m_surface.setFormat(m_writer.format());
    write();
    select(selection);
}

void MarkdownContentView::setHighlightText(const QString& text)
{
    m_surface.setHighlightText(text);
}

QRect MarkdownContentView::blockRect(int index)
{
    if (index < 0)
        return {};
    while (index + 1 >= m_writer.blockCount() && !m_writer.isComplete())
        write();
    if (index >= m_writer.blockCount())
        return {};
    const int first = m_writer.firstRow(index);
    const qsizetype end =
        index + 1 < m_writer.blockCount() ? m_writer.firstRow(index + 1) : m_writer.rowCount();
    const QTextDocument& document = *m_surface.document();
    const QRectF rect = m_surface.rowRect(document.findBlockByNumber(first)) |
                        m_surface.rowRect(document.findBlockByNumber(static_cast<int>(end) - 1));
    return rect.toAlignedRect();
}

int MarkdownContentView::blockAt(int y) const
{
    return m_writer.rowCount() == 0 ? -1 : m_surface.rowAt(y).blockFormat().intProperty(rowBlock);
}

QString MarkdownContentView::selectedText() const
{
    return varno::selectedText(m_surface.textCursor());
}

void MarkdownContentView::clearSelection()
{
    m_surface.setTextCursor(QTextCursor(m_surface.document()));
}

void MarkdownContentView::selectAll()
{
    writeToEnd();
    m_surface.selectAll();
}

std::unique_ptr<QMimeData> MarkdownContentView::all()
{
    writeToEnd();
    return m_surface.all();
}

QString MarkdownContentView::linkAt(const QPoint& position) const
{
    return m_surface.anchorAt(position);
}

void MarkdownContentView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    m_surface.setGeometry(0, 0, width(), height());
}

void MarkdownContentView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    write();
}

void MarkdownContentView::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    m_continuation.stop();
}

void MarkdownContentView::write(qsizetype atLeast)
{
    const Selection selection = this->selection();
    m_writer.write(QDeadlineTimer(slice), atLeast);
    select(selection);
    adjustHeight();
    if (!m_writer.isComplete() && isVisible())
        m_continuation.start();
}

void MarkdownContentView::writeToEnd()
{
    while (!m_writer.isComplete())
        write();
}

void MarkdownContentView::adjustHeight()
{
    const QTextDocument& document = *m_surface.document();
    if (m_writer.rowCount() == 0)
        setFixedHeight(0);
    else
        setFixedHeight(static_cast<int>(std::ceil(document.size().height())));
}

MarkdownContentView::Selection MarkdownContentView::selection() const
{
    const QTextCursor cursor = m_surface.textCursor();
    return {.anchor = cursor.anchor(), .position = cursor.position()};
}

/// The same characters are selected as before, as far as they are still there. A cursor of the
/// document by itself would move on when text is inserted where it stands.
void MarkdownContentView::select(const Selection& selection)
{
    const int last = m_surface.document()->characterCount() - 1;
    if (selection == this->selection() || std::max(selection.anchor, selection.position) > last)
        return;
    QTextCursor cursor = m_surface.textCursor();
    cursor.setPosition(selection.anchor);
    cursor.setPosition(selection.position, QTextCursor::KeepAnchor);
    m_surface.setTextCursor(cursor);
}

} // namespace varno
