#pragma once

#include "reader/text/DocumentWriter.h"
#include "reader/text/TextSurface.h"

#include <QTimer>

#include <memory>

namespace varno {

/// The text of one page as a column of styled blocks. Its height is fixed to that of its text, so
/// it belongs into a scroll area.
///
/// What it shows depends on its four inputs alone. Text that grows at its end costs the same
/// however long the page is.
///
/// A long page is written in slices of some milliseconds, so that the main thread is not blocked.
class MarkdownContentView final : public QWidget {
    Q_OBJECT

public:
    explicit MarkdownContentView(QWidget* parent = nullptr);

    /// Whether a page of that text shows nothing but blanks.
    [[nodiscard]] static bool showsNothing(QStringView text);

    /// Shows the text of another page, of which nothing is selected.
    void setText(QStringView text);
    /// Shows another text of the same page. What is selected stays so, as far as it is still there.
    void reviseText(QStringView text);
    /// Appends `piece` to the text.
    void appendText(QStringView piece);
    void setFontSize(int points);
    void setTextColor(const QColor& color);
    /// Highlights every occurrence of `text`; an empty one highlights nothing.
    void setHighlightText(const QString& text);

    /// The length of the text that was set.
    [[nodiscard]] qsizetype textLength() const { return m_textLength; }
    [[nodiscard]] QString selectedText() const;
    [[nodiscard]] bool hasSelection() const { return m_surface.textCursor().hasSelection(); }
    void clearSelection();
    // These write the page to its end.
    void selectAll();
    /// What selecting all and copying gives; the caller owns it.
    [[nodiscard]] std::unique_ptr<QMimeData> all();
    void copySelection() { m_surface.copy(); }

    /// The address of the link at a position, or of the one that has the focus; empty where there
    /// is none.
    [[nodiscard]] QString linkAt(const QPoint& position) const;
    [[nodiscard]] QString focusedLink() const { return m_surface.focusedLink(); }

    /// The rectangle of a block, in this widget's coordinates; null when there is no such block.
    [[nodiscard]] QRect blockRect(int index);
    /// The index of the block at `y`, or of the nearest one; -1 when there is none.
    [[nodiscard]] int blockAt(int y) const;

    /// The document as it is shown: a text block for each row. Not to be changed.
    [[nodiscard]] const QTextDocument& document() const { return *m_surface.document(); }

Q_SIGNALS:
    /// Announces the position of the dragged end of the selection, in this widget's coordinates.
    void selectionDragged(const QPoint& position);
    /// A link has got the focus; its rectangle, in this widget's coordinates.
    void linkFocused(const QRect& rect);
    /// Something is selected that was not.
    void selected();

protected:
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    struct Selection {
        int anchor = 0;
        int position = 0;

        bool operator==(const Selection&) const = default;
    };

    void setFormat(const RowFormat& format, qsizetype atLeast = 0);
    void write(qsizetype atLeast = 0);
    void writeToEnd();
    void adjustHeight();
    [[nodiscard]] Selection selection() const;
    void select(const Selection& selection);

    TextSurface m_surface;
    DocumentWriter m_writer;
    QTimer m_continuation;
    qsizetype m_textLength = 0;
};

} // namespace varno
