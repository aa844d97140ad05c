#pragma once

#include "reader/text/InlineMarkdown.h"
#include "reader/text/RowReader.h"

#include <QColor>
#include <QHash>
#include <QTextFormat>

namespace varno {

/// The properties of a document's text blocks that tell of their rows.
enum RowProperty {
    rowBlock = QTextFormat::UserProperty, ///< index of the block that the row belongs to
    rowEnd,                               ///< a `RowEnd`
    rowMark,                              ///< of a list's item; drawn beside the row
    rowMarkWidth,                         ///< of the frame that the mark is drawn in
    rowMarkCentred, ///< whether it stands in the middle of its frame, or at the end
};

/// The figures of the column: fonts, colours and lengths of its rows. A point is a
/// device-independent pixel.
class RowFormat {
public:
    RowFormat(int fontSize, const QColor& textColor);

    [[nodiscard]] int fontSize() const { return m_fontSize; }
    [[nodiscard]] const QColor& textColor() const { return m_textColor; }
    /// The font of paragraphs, which is the document's default font.
    [[nodiscard]] const QFont& font() const { return m_font; }
    /// The colour of a list's numbers.
    [[nodiscard]] QColor numberColor() const;
    /// The font of a list's mark: a number too wide for its place is smaller.
    [[nodiscard]] QFont markFont(const QString& mark) const;

    /// `previousMargin` is the bottom margin of the row before: of two margins that meet, a
    /// document keeps the wider one.
    [[nodiscard]] QTextBlockFormat block(const Row& row, bool rightToLeft,
                                         double previousMargin) const;

    /// The format of a row's text block, which decides the height of an empty row.
    [[nodiscard]] const QTextCharFormat& plain(BlockKind kind);
    [[nodiscard]] QTextCharFormat run(BlockKind kind, const InlineRun& run);

private:
    [[nodiscard]] double paddingBelow(const Row& row) const;
    const QTextCharFormat& styled(BlockKind kind, InlineStyles styles);

    int m_fontSize;
    QColor m_textColor;
    QFont m_font;
    QHash<int, QTextCharFormat> m_formats;
};

/// Whether a link to that address is opened when it is pressed: of http, https and mailto alone.
[[nodiscard]] bool mayBeOpened(const QString& address);

} // namespace varno
