#include "reader/PageSelection.h"

#include "reader/EntryHeader.h"
#include "reader/text/MarkdownContentView.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMouseEvent>

namespace varno {

PageSelection::PageSelection(EntryHeader& header, MarkdownContentView& text, QObject* parent)
    : QObject(parent)
    , m_header(header)
    , m_text(text)
{
    connect(&header.text(), &SelectableText::selected, &text, &MarkdownContentView::clearSelection);
    connect(&text, &MarkdownContentView::selected, &header.text(), &SelectableText::clearSelection);
    connect(&header.text(), &SelectableText::selectionEnded, this, [this] {
        QClipboard& clipboard = *QGuiApplication::clipboard();
        if (clipboard.supportsSelection())
            clipboard.setText(m_header.selectedTitle(), QClipboard::Selection);
    });
}

QString PageSelection::text() const
{
    return m_text.hasSelection() ? m_text.selectedText() : m_header.selectedTitle();
}

void PageSelection::copy() const
{
    if (m_text.hasSelection())
        m_text.copySelection();
    else if (m_header.text().hasSelection())
        QGuiApplication::clipboard()->setText(m_header.selectedTitle());
}

void PageSelection::selectAll()
{
    m_text.selectAll();
}

bool PageSelection::mouseBeside(const QMouseEvent& event)
{
    if ((event.buttons() | event.button()) != Qt::LeftButton)
        return false;
    const auto placeIn = [&event](const QWidget& widget) {
        return widget.mapFromGlobal(event.globalPosition());
    };
    if (event.button() == Qt::LeftButton && event.type() != QEvent::MouseButtonRelease) {
        const bool isAtTitle = placeIn(m_header).y() < m_header.height();
        m_receiver = isAtTitle ? &m_header.text() : m_text.childAt(0, 0);
    }
    if (!m_receiver || !m_receiver->isVisible())
        return false;
    QMouseEvent there(event.type(), placeIn(*m_receiver), event.globalPosition(), event.button(),
                      event.buttons(), event.modifiers());
    QCoreApplication::sendEvent(m_receiver, &there);
    return true;
}

} // namespace varno
