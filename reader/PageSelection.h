#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

class QMouseEvent;

namespace varno {

class EntryHeader;
class MarkdownContentView;

/// What is selected of a page: of its title or of its text, never of both.
class PageSelection final : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    PageSelection(EntryHeader& header, MarkdownContentView& text, QObject* parent = nullptr);

    /// Empty when nothing is selected.
    [[nodiscard]] QString text() const;
    /// Puts it on the clipboard, if there is any.
    void copy() const;
    /// Selects the text.
    void selectAll();

    /// Takes an event of the mouse that happened beside the title and the text: a drag selects from
    /// the line that it began at. False when there is nothing to select.
    bool mouseBeside(const QMouseEvent& event);

private:
    EntryHeader& m_header;
    MarkdownContentView& m_text;
    QPointer<QWidget> m_receiver; ///< of the drag
};

} // namespace varno
