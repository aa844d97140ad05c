#pragma once

#include <QList>
#include <QStringView>

#include <optional>

namespace varno {

/// A fence that code stands behind.
struct Fence {
    QChar mark;
    qsizetype length = 0; ///< how often the mark is repeated; 0 where there is no fence
    qsizetype indentation = 0;

    [[nodiscard]] bool isOpen() const { return length > 0; }
};

/// The fence that a line opens, if it does. What follows the marks names the language.
[[nodiscard]] Fence openingFence(QStringView line);
[[nodiscard]] bool closesFence(QStringView line, const Fence& fence);
/// A line of code less the indentation of its fence.
[[nodiscard]] QStringView codeLine(QStringView line, const Fence& fence);

/// Whether a line is a rule: three or more of one mark, and blanks.
[[nodiscard]] bool isRule(QStringView line);

/// What stands behind the marks of a quote, and how many there are.
struct QuotedLine {
    int depth = 0;
    QStringView text;
};
[[nodiscard]] QuotedLine quotedLine(QStringView line);

enum class CellAlignment : quint8 { natural, left, centre, right };

/// The columns of a table.
struct Table {
    QList<CellAlignment> columns; ///< at most `mostTableColumns`
    bool isFramed = false;        ///< its lines begin with a pipe
};

/// A table with more columns than this has the rest in its last one.
inline constexpr qsizetype mostTableColumns = 256;

/// The table that a header and the line below it begin. A delimiter that is not complete yet may
/// have fewer columns.
[[nodiscard]] std::optional<Table> beginningTable(QStringView header, QStringView delimiter,
                                                  bool isComplete);
/// Whether a line is of the table above it.
[[nodiscard]] bool continuesTable(QStringView line, const Table& table);

/// What a line of a table has in its cells, without the pipes around them.
[[nodiscard]] QStringView tableLine(QStringView line);
/// Takes the next cell out of a table's line, with the pipe after it; the last column takes all.
QStringView takeCell(QStringView& line, bool isLastColumn);

} // namespace varno
