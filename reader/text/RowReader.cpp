#include "reader/text/RowReader.h"

#include "kit/TextCuts.h"
#include "reader/text/Characters.h"

namespace varno {
namespace {

using Within = RowStart::Within;

/// What stands from `offset` to the next empty line, or to the end.
QStringView pieceAt(QStringView text, qsizetype offset)
{
    const qsizetype end = text.indexOf(u"\n\n", offset);
    return text.sliced(offset, (end < 0 ? text.size() : end) - offset);
}

QStringView takeLine(QStringView& lines)
{
    const qsizetype end = lines.indexOf(u'\n');
    const QStringView line = end < 0 ? lines : lines.first(end);
    lines = end < 0 ? QStringView() : lines.sliced(end + 1);
    return line;
}

/// Whether more of its block follows a line that ends there.
bool goesOn(QStringView text, qsizetype lineEnd)
{
    for (qsizetype position = lineEnd + 1; position < text.size(); ++position) {
        if (!text[position].isSpace())
            return true;
        if (text[position] == u'\n' && text[position - 1] == u'\n')
            return false;
    }
    return false;
}

/// Whether a line that ends there, blanks aside, is followed by another.
bool isComplete(QStringView text, qsizetype lineEnd)
{
    while (lineEnd < text.size() && isBlank(text[lineEnd]))
        ++lineEnd;
    return lineEnd < text.size();
}

/// A trimmed block, with the blanks in front of it, which mean something in code.
QStringView withIndentation(QStringView text, QStringView block)
{
    const qsizetype end = block.data() - text.data() + block.size();
    qsizetype begin = end - block.size();
    while (begin > 0 && isBlank(text[begin - 1]))
        --begin;
    return text.first(end).sliced(begin);
}

QStringView withoutEnd(QStringView text)
{
    while (!text.isEmpty() && text.back().isSpace())
        text.chop(1);
    return text;
}

} // namespace

RowReader::RowReader(QStringView text, const RowStart& from)
    : m_text(text)
    , m_position(from.offset)
    , m_start(from)
    , m_fence(from.fence)
    , m_table(from.table)
{
    if (from.within == Within::piece)
        --m_start.block;
    else
        resume(from);
}

void RowReader::resume(const RowStart& from)
{
    QStringView rest = pieceAt(m_text, from.offset);
    m_position = from.offset + rest.size();
    rest = withoutEnd(rest);
    m_blockEnd = from.offset + rest.size();
    if (from.within == Within::line) {
        resumeInLine(from, rest);
    } else if (from.within == Within::cells) {
        m_cells = withoutLeadingBlanks(takeLine(rest));
        m_lines = rest;
        --m_start.number;
    } else {
        m_lines = rest;
    }
    if (from.isHeader && from.within != Within::lines)
        takeLine(m_lines);
}

void RowReader::resumeInLine(const RowStart& from, QStringView rest)
{
    if (from.kind == BlockKind::paragraph && from.form == RowForm::text) {
        m_lines = rest;
        openText();
        return;
    }
    QStringView line = takeLine(rest);
    if (isList(from.kind) || from.kind == BlockKind::paragraph)
        m_lines = rest;
    else
        m_piece = rest.trimmed();
    if (from.form == RowForm::cell) {
        m_cells = line;
        line = takeCell(m_cells, from.number + 1 == m_table->columns.size());
    } else if (from.form != RowForm::code) {
        line = withoutEnd(line);
    }
    if (from.kind == BlockKind::boldHeader)
        line.chop(2);
    m_line = ListItem{.mark = {}, .text = line};
}

std::optional<Row> RowReader::next()
{
    if (!m_line && !openRow() && !openBlock())
        return std::nullopt;
    const qsizetype length = rowLength(m_line->text, pageRow);
    Row row{.start = m_start, .mark = m_line->mark, .text = m_line->text.first(length)};
    if (m_start.form == RowForm::cell)
        row.alignment = m_table->columns.at(m_start.number);
    QStringView rest = m_line->text.sliced(length);
    if (!row.isVerbatim())
        rest = rest.trimmed();
    if (rest.isEmpty()) {
        m_line.reset();
        const RowEnd inBlock = isList(m_start.kind) ? RowEnd::item
                               : m_cells.isEmpty()  ? RowEnd::line
                                                    : RowEnd::cell;
        row.end = openRow() ? inBlock : RowEnd::block;
    } else {
        const bool isBlank = !row.isVerbatim() && m_line->text[length].isSpace();
        row.end = isBlank ? RowEnd::blank : RowEnd::word;
        m_line = ListItem{.mark = {}, .text = rest};
        if (m_start.kind == BlockKind::paragraph && m_start.form == RowForm::text) {
            m_lines = m_text.first(m_blockEnd).sliced(offsetOf(rest));
            openText();
        }
        m_start.offset = offsetOf(rest);
        m_start.within = Within::line;
        m_start.fence = m_fence;
        m_start.table = m_table;
    }
    return row;
}

/// Opens the next row of the open block.
bool RowReader::openRow()
{
    if (!m_cells.isEmpty()) {
        const int column = m_start.number + 1;
        const bool isHeader = m_start.isHeader;
        placeRow(Within::cells, m_cells);
        m_start.number = column;
        m_start.isHeader = isHeader;
        return openCell();
    }
    return isList(m_start.kind) ? openItem() : openParagraphRow();
}

/// Opens the next line of the open list that is an item.
bool RowReader::openItem()
{
    while (!m_lines.isEmpty()) {
        placeRow(Within::lines, m_lines);
        const QStringView line = takeLine(m_lines);
        m_line = listItem(line, m_start.kind);
        noteFence(m_line ? m_line->text : line);
        if (!m_line)
            continue;
        m_start.isSentence = m_line->mark.isEmpty();
        m_isFirst = false;
        return true;
    }
    return false;
}

/// Opens the next row of the open paragraph, by what its next line looks like. One that shows
/// nothing has a hidden row.
bool RowReader::openParagraphRow()
{
    while (!m_lines.isEmpty()) {
        const QStringView lines = m_lines;
        placeRow(Within::lines, lines);
        QStringView line = takeLine(m_lines);
        const Fence fence = m_fence;
        noteFence(line);
        if (fence.isOpen() || m_fence.isOpen()) {
            m_table.reset();
            if (fence.isOpen() && m_fence.isOpen())
                return openRow(codeLine(line, fence), RowForm::code);
            continue;
        }
        if (QuotedLine quoted = quotedLine(line); quoted.depth > 0) {
            if (quoted.text.endsWith(u'\\') && !m_lines.isEmpty()) // the break that comes anyway
                quoted.text.chop(1);
            return openRow(quoted.text, RowForm::quote, quoted.depth);
        }
        if (isRule(line))
            return openRow(line.first(0), RowForm::rule);
        const bool isOfTable = m_table && continuesTable(line, *m_table);
        if (const auto table = isOfTable ? nullptr : tableAt(lines)) {
            takeLine(m_lines); // the delimiter
            m_table = table;
            m_start.isHeader = true;
        } else if (!isOfTable) {
            m_lines = lines;
            if (openText())
                return true;
            continue;
        }
        m_cells = tableLine(line);
        return openCell();
    }
    return m_isFirst && openRow(m_text.sliced(m_start.offset, 0), RowForm::hidden);
}

bool RowReader::openRow(QStringView text, RowForm form, int number)
{
    m_line = ListItem{.mark = {}, .text = text};
    m_start.form = form;
    m_start.number = number;
    m_isFirst = false;
    return true;
}

bool RowReader::openCell()
{
    const int column = m_start.number;
    const bool isLast = column + 1 == m_table->columns.size();
    return openRow(takeCell(m_cells, isLast), RowForm::cell, column);
}

/// Opens the lines up to one that stands out, or more of them than a row holds.
bool RowReader::openText()
{
    constexpr qsizetype enough = 2 * pageRow.cost;
    QStringView rest = m_lines;
    do
        takeLine(rest);
    while (!rest.isEmpty() && rest.data() - m_lines.data() < enough && !standsOut(rest));
    const qsizetype length = rest.isEmpty() ? m_lines.size() : rest.data() - m_lines.data();
    const QStringView text = m_lines.first(length).trimmed();
    m_lines = rest;
    m_table.reset();
    return !text.isEmpty() && openRow(text, RowForm::text);
}

bool RowReader::standsOut(QStringView lines)
{
    QStringView rest = lines;
    const QStringView line = takeLine(rest);
    return openingFence(line).isOpen() || quotedLine(line).depth > 0 || isRule(line) ||
           tableAt(lines) != nullptr;
}

std::shared_ptr<const Table> RowReader::tableAt(QStringView lines)
{
    const QStringView header = takeLine(lines);
    if (lines.isEmpty())
        return nullptr;
    const QStringView delimiter = takeLine(lines);
    const bool isWhole = isComplete(m_text, offsetOf(delimiter) + delimiter.size());
    auto table = beginningTable(header, delimiter, isWhole);
    return table ? std::make_shared<const Table>(*std::move(table)) : nullptr;
}

/// Follows the fences, which go on over the blocks.
void RowReader::noteFence(QStringView line)
{
    if (!m_fence.isOpen())
        m_fence = openingFence(line);
    else if (closesFence(line, m_fence))
        m_fence = {};
}

/// Makes `m_start` that of a row which begins there. The first row of a block begins where the
/// block does.
void RowReader::placeRow(Within within, QStringView at)
{
    m_start = {.offset = m_isFirst ? m_start.offset : offsetOf(at),
               .block = m_start.block,
               .kind = m_start.kind,
               .within = m_isFirst ? Within::piece : within,
               .fence = m_isFirst ? m_start.fence : m_fence,
               .table = m_isFirst ? nullptr : m_table};
}

bool RowReader::openBlock()
{
    while (m_piece.isEmpty()) {
        if (m_position >= m_text.size())
            return false;
        const QStringView piece = pieceAt(m_text, m_position);
        m_piece = piece.trimmed();
        m_position += piece.size() + 2;
    }
    const qsizetype heading = splitHeadingFromBody(m_piece);
    const QStringView block = heading > 0 ? m_piece.first(heading) : m_piece;
    m_piece = m_piece.sliced(block.size()).trimmed();
    m_blockEnd = offsetOf(block) + block.size();
    m_start = {.offset = offsetOf(block),
               .block = m_start.block + 1,
               .kind = blockKind(block),
               .within = Within::piece,
               .fence = m_fence,
               .table = nullptr};
    m_table.reset();
    if (isList(m_start.kind) || m_start.kind == BlockKind::paragraph) {
        m_isFirst = true;
        m_lines =
            m_fence.isOpen() && !isList(m_start.kind) ? withIndentation(m_text, block) : block;
        return openRow();
    }
    m_line = ListItem{.mark = {}, .text = blockText(block, m_start.kind)};
    return true;
}

BlockKind RowReader::kindAt(QStringView text, qsizetype offset)
{
    const qsizetype end = text.indexOf(u'\n', offset);
    const QStringView line = text.sliced(offset, (end < 0 ? text.size() : end) - offset);
    if (end < 0 || !goesOn(text, end))
        return blockKind(line.trimmed());
    // All but one kind are told from the first line.
    const BlockKind kind = blockKind(line);
    return kind == BlockKind::boldHeader ? BlockKind::paragraph : kind;
}

QStringList blocks(QStringView text)
{
    QStringList result;
    RowReader reader(text);
    while (const auto row = reader.next()) {
        if (row->start.block < result.size())
            continue;
        const QStringView piece = pieceAt(text, row->start.offset).trimmed();
        const qsizetype heading = splitHeadingFromBody(piece);
        result.append((heading > 0 ? piece.first(heading) : piece).toString());
    }
    return result;
}

} // namespace varno
