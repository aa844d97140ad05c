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
{
    if (from.within == Within::list)
        resumeInList(from);
    else if (from.within == Within::line)
        resumeInLine(from);
    else
        --m_start.block;
}

void RowReader::resumeInList(const RowStart& from)
{
    m_lines = pieceAt(m_text, from.offset);
    m_position = from.offset + m_lines.size();
    m_lines = withoutEnd(m_lines);
}

void RowReader::resumeInLine(const RowStart& from)
{
    QStringView rest = pieceAt(m_text, from.offset);
    m_position = from.offset + rest.size();
    rest = withoutEnd(rest);
    if (from.kind == BlockKind::paragraph) {
        m_line = ListItem{.mark = {}, .text = rest};
        return;
    }
    QStringView line = withoutEnd(takeLine(rest));
    if (isList(from.kind))
        m_lines = rest;
    else
        m_piece = rest.trimmed();
    if (from.kind == BlockKind::boldHeader)
        line.chop(2);
    m_line = ListItem{.mark = {}, .text = line};
}

std::optional<Row> RowReader::next()
{
    if (!m_line && !openLine() && !openBlock())
        return std::nullopt;
    const qsizetype length = rowLength(m_line->text, pageRow);
    Row row{.start = m_start, .mark = m_line->mark, .text = m_line->text.first(length)};
    const QStringView rest = m_line->text.sliced(length).trimmed();
    if (rest.isEmpty()) {
        m_line.reset();
        row.end = openLine() ? RowEnd::item : RowEnd::block;
    } else {
        row.end = m_line->text[length].isSpace() ? RowEnd::blank : RowEnd::word;
        m_line = ListItem{.mark = {}, .text = rest};
        m_start.offset = offsetOf(rest);
        m_start.within = Within::line;
    }
    return row;
}

/// Opens the next line of the open list that is an item.
bool RowReader::openLine()
{
    while (!m_lines.isEmpty()) {
        const bool isFirst = m_start.within == Within::piece && m_start.offset == offsetOf(m_lines);
        const QStringView line = takeLine(m_lines);
        m_line = listItem(line, m_start.kind);
        if (!m_line)
            continue;
        m_start.isSentence = m_line->mark.isEmpty();
        if (!isFirst) {
            m_start.offset = offsetOf(line);
            m_start.within = Within::list;
        }
        return true;
    }
    return false;
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
    m_start = {.offset = offsetOf(block),
               .block = m_start.block + 1,
               .kind = blockKind(block),
               .within = Within::piece};
    if (isList(m_start.kind)) {
        m_lines = block;
        return openLine();
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
