#pragma once

#include "reader/text/Highlights.h"

#include <QAccessible>

class QTextBlock;
class QTextDocument;

namespace varno {

class TextSurface;

/// A part of the text of a page, to assistive technology. All its offsets count from the part's
/// begin. A unit of text is never more than one row, so each call costs what it returns.
class AccessibleText : public QAccessibleTextInterface {
public:
    /// The surface outlives it.
    explicit AccessibleText(TextSurface& surface);

    void selection(int index, int* begin, int* end) const override;
    [[nodiscard]] int selectionCount() const override;
    void addSelection(int begin, int end) override;
    void removeSelection(int index) override;
    void setSelection(int index, int begin, int end) override;

    [[nodiscard]] int cursorPosition() const override;
    void setCursorPosition(int offset) override;

    [[nodiscard]] QString text(int begin, int end) const override;
    [[nodiscard]] QString textBeforeOffset(int offset, QAccessible::TextBoundaryType boundary,
                                           int* begin, int* end) const override;
    [[nodiscard]] QString textAtOffset(int offset, QAccessible::TextBoundaryType boundary,
                                       int* begin, int* end) const override;
    [[nodiscard]] QString textAfterOffset(int offset, QAccessible::TextBoundaryType boundary,
                                          int* begin, int* end) const override;
    [[nodiscard]] int characterCount() const override;

    [[nodiscard]] QRect characterRect(int offset) const override;
    [[nodiscard]] int offsetAtPoint(const QPoint& point) const override;
    void scrollToSubstring(int begin, int end) override;
    [[nodiscard]] QString attributes(int offset, int* begin, int* end) const override;

protected:
    /// Positions of the document. What it has lost since is left out by whoever asks.
    [[nodiscard]] virtual TextRange range() const = 0;

    [[nodiscard]] TextSurface& surface() const { return m_surface; }
    [[nodiscard]] QTextDocument& document() const;
    /// On the screen: all the rows that the range touches.
    [[nodiscard]] QRect rectOf(const TextRange& positions) const;

private:
    [[nodiscard]] TextRange bounds() const;
    [[nodiscard]] TextRange selected() const;
    [[nodiscard]] TextRange unitAt(qsizetype position, QAccessible::TextBoundaryType kind) const;
    [[nodiscard]] QString unit(qsizetype position, QAccessible::TextBoundaryType kind, int* begin,
                               int* end) const;

    TextSurface& m_surface;
};

} // namespace varno
