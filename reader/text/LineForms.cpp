#include "reader/text/LineForms.h"

#include "reader/text/Characters.h"

#include <algorithm>

namespace varno {
namespace {

constexpr qsizetype shortestFence = 3;
constexpr qsizetype shortestRule = 3;

QStringView withoutTrailingBlanks(QStringView line)
{
    while (!line.isEmpty() && (isBlank(line.back()) || line.back() == u'\r'))
        line.chop(1);
    return line;
}

QStringView withoutOuterBlanks(QStringView line)
{
    return withoutTrailingBlanks(withoutLeadingBlanks(line));
}

/// Where the next pipe is that no backslash stands before; the line's length if there is none.
qsizetype nextPipe(QStringView line)
{
    bool isEscaped = false;
    for (qsizetype position = 0; position < line.size(); ++position) {
        if (line[position] == u'|' && !isEscaped)
            return position;
        isEscaped = line[position] == u'\\' && !isEscaped;
    }
    return line.size();
}

bool hasPipe(QStringView line)
{
    return nextPipe(line) < line.size();
}

QList<QStringView> cellsOf(QStringView line)
{
    QList<QStringView> cells;
    for (line = tableLine(line); !line.isEmpty();)
        cells.append(takeCell(line, false));
    return cells;
}

/// Of one cell of a delimiter, such as ":--:"; nothing if it is none.
std::optional<CellAlignment> alignmentOf(QStringView cell, bool isComplete)
{
    const bool left = cell.startsWith(u':');
    const bool right = cell.size() > 1 && cell.endsWith(u':');
    const QStringView dashes = cell.sliced(left ? 1 : 0).chopped(right ? 1 : 0);
    if (repetitions(dashes, u'-') < dashes.size() || (dashes.isEmpty() && isComplete))
        return std::nullopt;
    if (left && right)
        return CellAlignment::centre;
    if (left || right)
        return left ? CellAlignment::left : CellAlignment::right;
    return CellAlignment::natural;
}

} // namespace

Fence openingFence(QStringView line)
{
    const QStringView marks = withoutLeadingBlanks(line);
    if (marks.isEmpty() || (marks.front() != u'`' && marks.front() != u'~'))
        return {};
    const Fence fence{.mark = marks.front(),
                      .length = repetitions(marks, marks.front()),
                      .indentation = line.size() - marks.size()};
    const bool isSpan = fence.mark == u'`' && marks.sliced(fence.length).contains(u'`');
    return fence.length < shortestFence || isSpan ? Fence() : fence;
}

bool closesFence(QStringView line, const Fence& fence)
{
    line = withoutOuterBlanks(line);
    return line.size() >= fence.length && repetitions(line, fence.mark) == line.size();
}

QStringView codeLine(QStringView line, const Fence& fence)
{
    qsizetype blanks = 0;
    while (blanks < std::min(fence.indentation, line.size()) && isBlank(line[blanks]))
        ++blanks;
    line = line.sliced(blanks);
    return line.endsWith(u'\r') ? line.chopped(1) : line;
}

bool isRule(QStringView line)
{
    line = withoutOuterBlanks(line);
    if (line.isEmpty() || !QStringView(u"-*_").contains(line.front()))
        return false;
    return line.count(line.front()) >= shortestRule &&
           std::all_of(line.begin(), line.end(), [&](QChar character) {
               return character == line.front() || isBlank(character);
           });
}

QuotedLine quotedLine(QStringView line)
{
    QuotedLine quoted{.depth = 0, .text = line};
    for (QStringView rest = withoutLeadingBlanks(line); rest.startsWith(u'>');
         rest = withoutLeadingBlanks(quoted.text)) {
        ++quoted.depth;
        quoted.text = rest.sliced(1);
    }
    if (quoted.depth > 0)
        quoted.text = withoutOuterBlanks(quoted.text);
    return quoted;
}

std::optional<Table> beginningTable(QStringView header, QStringView delimiter, bool isComplete)
{
    delimiter = withoutOuterBlanks(delimiter);
    const bool isDelimiter =
        !delimiter.isEmpty() && std::all_of(delimiter.begin(), delimiter.end(), [](QChar mark) {
            return mark == u'-' || mark == u':' || mark == u'|' || isBlank(mark);
        });
    if (!isDelimiter || !hasPipe(header) || !hasPipe(delimiter))
        return std::nullopt;
    const QList<QStringView> marks = cellsOf(delimiter);
    const qsizetype count = cellsOf(header).size();
    if (count == 0 || marks.size() > count || (isComplete && marks.size() < count))
        return std::nullopt;
    Table table{.columns = QList<CellAlignment>(std::min(count, mostTableColumns)),
                .isFramed = withoutLeadingBlanks(header).startsWith(u'|')};
    for (qsizetype column = 0; column < marks.size(); ++column) {
        const auto alignment = alignmentOf(marks[column], isComplete);
        if (!alignment)
            return std::nullopt;
        if (column < table.columns.size())
            table.columns[column] = *alignment;
    }
    return table;
}

bool continuesTable(QStringView line, const Table& table)
{
    return hasPipe(line) || (!table.isFramed && !withoutOuterBlanks(line).isEmpty());
}

QStringView tableLine(QStringView line)
{
    line = withoutOuterBlanks(line);
    return line.startsWith(u'|') ? line.sliced(1) : line;
}

QStringView takeCell(QStringView& line, bool isLastColumn)
{
    qsizetype end = nextPipe(line);
    if (isLastColumn && end < line.size()) {
        const QStringView all = withoutTrailingBlanks(line);
        end = all.size() - (all.endsWith(u'|') ? 1 : 0);
    }
    const QStringView cell = line.first(end);
    line = withoutLeadingBlanks(line.sliced(std::min(end + 1, line.size())));
    if (isLastColumn)
        line = {};
    return withoutOuterBlanks(cell);
}

} // namespace varno
