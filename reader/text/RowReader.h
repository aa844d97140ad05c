#pragma once

#include "reader/text/Blocks.h"
#include "reader/text/LineForms.h"

#include <QStringList>

#include <memory>

namespace varno {

/// What a row is set as. Only the rows of paragraphs are anything but text.
enum class RowForm : quint8 {
    text,
    code,   ///< a line of code, which has no inline Markdown
    quote,  ///< a line of a quote
    cell,   ///< of a table
    rule,   ///< a line across the column
    hidden, ///< what stands for a block that shows nothing but has its place
};

/// Where in a text a row begins, and what is known about it there: enough to read on from.
struct RowStart {
    enum class Within {
        piece, ///< at the start of a block, or of blanks before one
        lines, ///< at the start of a line of a list or a paragraph
        cells, ///< at the start of a cell but the first of its line
        line,  ///< in the middle of a line that is too long for one row
    };

    qsizetype offset = 0;
    int block = 0; ///< index of the block
    BlockKind kind = BlockKind::paragraph;
    Within within = Within::piece;
    bool isSentence = false; ///< of a numbered list: no item, but a line that begins with a number
    RowForm form = RowForm::text;
    bool isHeader = false;              ///< of a cell: of the table's header
    int number = 0;                     ///< of a cell: its column; of a quote: its depth
    Fence fence;                        ///< open in front of the row
    std::shared_ptr<const Table> table; ///< that the row is in, or stands below
};

/// What comes after a row.
enum class RowEnd {
    block, ///< another block, or nothing
    item,  ///< another item of the list
    line,  ///< another line of the paragraph
    cell,  ///< another cell of the table's line
    blank, ///< the rest of the same line, after a blank
    word,  ///< the rest of the same word
};

/// One row of the column: a block, an item of a list, a line of code or of a quote, a cell of a
/// table, or a part of any of these when that is very long.
struct Row {
    RowStart start;
    QString mark;     ///< of a list's item
    QStringView text; ///< inline Markdown, or code
    RowEnd end = RowEnd::block;
    CellAlignment alignment = CellAlignment::natural; ///< of a cell

    /// Whether its text is shown as it stands.
    [[nodiscard]] bool isVerbatim() const { return start.form == RowForm::code; }
};

/// Reads the rows of a text, in order. What it reads from a row's start does not depend on what
/// stands before it, so reading can go on at any row when the text has grown.
///
/// A line of many thousand letters, or a hundred pictures, is cut into several rows: laying out a
/// line takes more than its share of time the longer it is. Where it is cut depends on what
/// precedes the cut alone.
class RowReader {
public:
    /// `text` outlives the reader and its rows.
    explicit RowReader(QStringView text, const RowStart& from = {});

    [[nodiscard]] std::optional<Row> next();

    /// The kind, by now, of the block that begins at `offset`.
    [[nodiscard]] static BlockKind kindAt(QStringView text, qsizetype offset);

private:
    void resume(const RowStart& from);
    void resumeInLine(const RowStart& from, QStringView rest);
    bool openBlock();
    bool openRow();
    bool openItem();
    bool openParagraphRow();
    bool openRow(QStringView text, RowForm form, int number = 0);
    bool openCell();
    bool openText();
    void placeRow(RowStart::Within within, QStringView at);
    void noteFence(QStringView line);
    [[nodiscard]] std::shared_ptr<const Table> tableAt(QStringView lines);
    [[nodiscard]] bool standsOut(QStringView lines);
    [[nodiscard]] qsizetype offsetOf(QStringView part) const { return part.data() - m_text.data(); }

    QStringView m_text;
    qsizetype m_position;                 ///< where to look for the next piece between empty lines
    qsizetype m_blockEnd = 0;             ///< where the open block ends
    QStringView m_piece;                  ///< what of the open one comes after the open block
    QStringView m_lines;                  ///< the lines of the open block that are still to come
    QStringView m_cells;                  ///< what of a table's line comes after the open cell
    std::optional<ListItem> m_line;       ///< what is left of the open row
    RowStart m_start;                     ///< of the next row
    bool m_isFirst = false;               ///< whether that begins where its block does
    Fence m_fence;                        ///< open in front of `m_lines`
    std::shared_ptr<const Table> m_table; ///< open in front of `m_lines`
};

/// The blocks that the rows of a text belong to, in reading order: what stands between empty lines,
/// trimmed, each heading line apart from what follows it.
[[nodiscard]] QStringList blocks(QStringView text);

} // namespace varno
