#pragma once

#include "reader/text/Blocks.h"

#include <QStringList>

namespace varno {

/// Where in a text a row begins, and what is known about it there: enough to read on from.
struct RowStart {
    enum class Within {
        piece, ///< at the start of a block, or of blanks before one
        list,  ///< at the start of a line of a list
        line,  ///< in the middle of a line that is too long for one row
    };

    qsizetype offset = 0;
    int block = 0; ///< index of the block
    BlockKind kind = BlockKind::paragraph;
    Within within = Within::piece;
    bool isSentence = false; ///< of a numbered list: no item, but a line that begins with a number
};

/// What comes after a row.
enum class RowEnd {
    block, ///< another block, or nothing
    item,  ///< another item of the list
    blank, ///< the rest of the same line, after a blank
    word,  ///< the rest of the same word
};

/// One row of the column: a block, an item of a list, or a part of either when that is very long.
struct Row {
    RowStart start;
    QString mark;     ///< of a list's item
    QStringView text; ///< inline Markdown
    RowEnd end = RowEnd::block;
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
    void resumeInList(const RowStart& from);
    void resumeInLine(const RowStart& from);
    bool openBlock();
    bool openLine();
    [[nodiscard]] qsizetype offsetOf(QStringView part) const { return part.data() - m_text.data(); }

    QStringView m_text;
    qsizetype m_position;           ///< where to look for the next piece between empty lines
    QStringView m_piece;            ///< what of the open one comes after the open block
    QStringView m_lines;            ///< the lines of the open list that are still to come
    std::optional<ListItem> m_line; ///< what is left of the open line
    RowStart m_start;               ///< of the next row of the open line
};

/// The blocks that the rows of a text belong to, in reading order: what stands between empty lines,
/// trimmed, each heading line apart from what follows it.
[[nodiscard]] QStringList blocks(QStringView text);

} // namespace varno
