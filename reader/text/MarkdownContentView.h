#pragma once

#include "reader/text/DocumentWriter.h"
#include "reader/text/TextSurface.h"

#include <QTimer>

namespace varno {

/// The text of one page as a column of styled blocks. As high as its text needs at its width; grows
/// and shrinks by itself, so put it into something that scrolls.
///
/// What it shows depends on its four inputs alone. Text that grows at its end costs the same
/// however long the page is.
///
/// A long page is written bit by bit, so that nothing else has to wait for it.
class MarkdownContentView final : public QWidget {
    Q_OBJECT

public:
    explicit MarkdownContentView(QWidget* parent = nullptr);

    /// Whether there is nothing to read on a page of that text, whatever marks it is made of.
    [[nodiscard]] static bool showsNothing(QStringView text);

    /// Shows another text. What both texts begin with stays as it is, selection included.
    void setText(QStringView text);
    /// The same text, with `piece` at its end.
    void appendText(QStringView piece);
    void setFontSize(int points);
    void setTextColor(const QColor& color);
    /// What to paint a highlight on wherever it occurs; empty is nothing.
    void setHighlightText(const QString& text);

    /// How many characters of text it was given.
    [[nodiscard]] qsizetype textLength() const { return m_textLength; }
    [[nodiscard]] QString selectedText() const;
    void clearSelection();

    /// Where the block of that index stands, in this widget's coordinates; null when there is no
    /// such block.
    [[nodiscard]] QRect blockRect(int index);
    /// The index of the block at that height, or of the one nearest to it; -1 when there is none.
    [[nodiscard]] int blockAt(int y) const;

    /// The document as it is shown: a text block for each row. Not to be changed.
    [[nodiscard]] const QTextDocument& document() const { return *m_surface.document(); }

Q_SIGNALS:
    /// The selection is being dragged, and its free end is there, in this widget's coordinates.
    void selectionDragged(const QPoint& position);

protected:
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    struct Selection {
        int anchor = 0;
        int position = 0;

        bool operator==(const Selection&) const = default;
    };

    void write(qsizetype atLeast = 0);
    void adjustHeight();
    [[nodiscard]] Selection selection() const;
    void select(const Selection& selection);

    TextSurface m_surface;
    DocumentWriter m_writer;
    QTimer m_continuation;
    qsizetype m_textLength = 0;
};

} // namespace varno
