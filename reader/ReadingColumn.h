#pragma once

#include "kit/Animation.h"
#include "kit/VerticalScrollArea.h"
#include "reader/BlinkingCursor.h"
#include "reader/EntryHeader.h"
#include "reader/ErrorPanel.h"
#include "reader/FullEntryButton.h"
#include "reader/PageSelection.h"
#include "reader/PulsingStatusText.h"
#include "reader/RelatedTopics.h"
#include "reader/SelectionScroller.h"
#include "reader/text/MarkdownContentView.h"

#include <optional>

namespace varno {

/// The page itself, which scrolls: its title, its text and what belongs to it, or what went wrong.
///
/// Changes of text, sizes and colours do not scroll: the line at the upper edge stays there.
class ReadingColumn final : public VerticalScrollArea {
    Q_OBJECT

public:
    explicit ReadingColumn(QWidget* parent = nullptr);

    void setTitle(const QString& title);
    /// A place in a page, wherever its lines break.
    struct Place {
        int block = -1;    ///< of the text; -1 is the top of the page
        double within = 0; ///< how much of the block is above the place, from 0 to 1
        int distance = 0;  ///< points from there
    };
    /// The place at the upper edge.
    [[nodiscard]] Place place() { return placeAt(0); }

    /// Shows the text of another page from a place in it; nothing is selected.
    void openPage(QStringView text, const Place& place);
    /// Shows another text of the same page.
    void reviseText(QStringView text);
    void appendText(QStringView piece);
    [[nodiscard]] qsizetype textLength() const { return m_text.textLength(); }
    /// What selecting all of the text and copying gives.
    [[nodiscard]] std::unique_ptr<QMimeData> allText() { return m_text.all(); }
    void setFontSize(int points);
    void setHighlightText(const QString& text) { m_text.setHighlightText(text); }

    /// The state of the page besides its text. A failure is shown in place of everything else.
    struct PageState {
        std::optional<QString> errorMessage{};
        bool isStreaming = false;
        bool isWithoutText = false; ///< written, and nothing to read
        bool offersFullEntry = false;
        QStringList relatedTopics{};
    };
    void setPageState(const PageState& state);
    /// Whether the button that makes a full entry of the page is on show.
    [[nodiscard]] bool offersFullEntry() const { return m_fullEntry.isVisible(); }

    /// Scrolls, animated, until that block of the text is centred vertically.
    void scrollToBlock(int index);

    /// Takes the keys that scroll, copy, and select all.
    void keyPressEvent(QKeyEvent* event) override;

Q_SIGNALS:
    void tryAgain();
    void newSearch();
    void fullEntry();
    void searchRequested(const QString& query);
    void copyEntry();
    /// The wheel asks for larger text, or for smaller.
    void textSizeStepped(int steps);

protected:
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    [[nodiscard]] Place placeAt(int y);
    void restore(const Place& place, int y = 0);
    template <typename Action>
    void keepPlace(Action action);
    void writeViewportBelow(int block);
    void settle();

    void showStatus();
    [[nodiscard]] bool isBesidePage(const QMouseEvent& event) const;
    void tellState(const PageState& state);
    void turnFor(QStringView text);
    void turn();

    QWidget m_page;
    QString m_titleShown;
    QString m_textStart; ///< which decides the direction, with the title
    QWidget m_state;     ///< of the writing, for assistive technology alone
    EntryHeader m_header;
    QWidget m_errorPlace;
    ErrorPanel m_error;
    MarkdownContentView m_text;
    QWidget m_streamingRow;
    BlinkingCursor m_cursor;
    PulsingStatusText m_status;
    QWidget m_fullEntryPlace;
    FullEntryButton m_fullEntry;
    QWidget m_relatedTopicsPlace;
    RelatedTopics m_relatedTopics;

    Animation m_scroll;
    PageSelection m_selection;
    SelectionScroller m_selectionScroller;
    int m_wheelTurn = 0; ///< of the step that is begun, in the wheel's units
    bool m_isWritten = false;
    bool m_isPressedBeside = false;
};

} // namespace varno
