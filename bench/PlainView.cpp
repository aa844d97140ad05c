#include "bench/PlainView.h"

#include <QAbstractTextDocumentLayout>

#include <cmath>

namespace varno::bench {

PlainView::PlainView()
    : m_surface(this)
    , m_cursor(m_surface.document())
{
    const RowFormat format(16, Qt::black);
    QTextDocument& document = *m_surface.document();
    document.setUndoRedoEnabled(false);
    document.setDocumentMargin(0);
    document.setDefaultFont(format.font());
    m_surface.setFormat(format);
    setFixedHeight(0);
    connect(document.documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
            &PlainView::adjustHeight);
}

void PlainView::appendText(QStringView piece)
{
    m_cursor.beginEditBlock(); // without, a cursor asks after each piece where on the line it is
    m_cursor.insertText(piece.toString());
    m_cursor.endEditBlock();
    adjustHeight();
}

void PlainView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    m_surface.setGeometry(0, 0, width(), height());
}

void PlainView::adjustHeight()
{
    setFixedHeight(static_cast<int>(std::ceil(document().size().height())));
}

} // namespace varno::bench
