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
    rowForm,        ///< a `RowForm`
    rowNumber,      ///< of a cell: its column; of a quote: its depth
    rowIsHeader,    ///< of a cell: whether it is of the table's header
    rowIsMirrored,  ///< of a cell: whether its table begins on the right
    rowKind,        ///< the `BlockKind` of the row's block
};

/// How far each level of a quote is set in, in points, and how many levels are.
inline constexpr int quoteIndent = 16;
inline constexpr int deepestQuote = 8;

/// The form of the row that a text block shows, and what comes after it.
[[nodiscard]] RowForm formOf(const QTextBlockFormat& format);
[[nodiscard]] RowEnd endOf(const QTextBlockFormat& format);

/// What decides the look of a row's letters.
struct RowLook {
    BlockKind kind = BlockKind::paragraph;
    RowForm form = RowForm::text;
    bool isHeader = false;

    bool operator==(const RowLook&) const = default;
};
[[nodiscard]] RowLook lookOf(const RowStart& row);

/// The figures of the column: fonts, colours and lengths of its rows. A point is a
/// device-independent pixel.
class RowFormat {
public:
    RowFormat(int fontSize, const QColor& textColor,
              Qt::LayoutDirection direction = Qt::LeftToRight);

    [[nodiscard]] int fontSize() const { return m_fontSize; }
    [[nodiscard]] const QColor& textColor() const { return m_textColor; }
    /// Of the page. Where it is right-to-left all begins on the right, but text without any letter
    /// of such a script.
    [[nodiscard]] Qt::LayoutDirection direction() const { return m_direction; }
    /// The font of paragraphs, which is the document's default font.
    [[nodiscard]] const QFont& font() const { return m_font; }
    /// The colour of a list's numbers.
    [[nodiscard]] QColor numberColor() const;
    /// The font of a list's mark: a number too wide for its place is smaller.
    [[nodiscard]] QFont markFont(const QString& mark) const;

    /// `text` is the one that the row shows, needed where `dependsOnText` tells so.
    [[nodiscard]] QTextBlockFormat block(const Row& row, const QString& text) const;
    [[nodiscard]] bool dependsOnText(const RowStart& row) const;

    /// The format of a row's text block, which decides the height of an empty row.
    [[nodiscard]] const QTextCharFormat& plain(const RowLook& look);
    [[nodiscard]] QTextCharFormat run(const RowLook& look, const InlineRun& run);

private:
    [[nodiscard]] double paddingBelow(const Row& row) const;
    void placeForm(QTextBlockFormat& format, const Row& row, bool rightToLeft) const;
    const QTextCharFormat& styled(const RowLook& look, InlineStyles styles);

    int m_fontSize;
    QColor m_textColor;
    Qt::LayoutDirection m_direction;
    QFont m_font;
    QHash<uint, QTextCharFormat> m_formats;
};

/// Whether a link to that address is opened when it is pressed: of http, https and mailto alone.
[[nodiscard]] bool mayBeOpened(const QString& address);

} // namespace varno
