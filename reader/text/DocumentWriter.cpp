#include "reader/text/DocumentWriter.h"

#include "kit/TextCuts.h"

#include <algorithm>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

/// What is laid out together, between two looks at the clock, may cost.
constexpr qsizetype layoutStep = 2048;
/// Of the block itself, as the number of letters that take as long.
constexpr qsizetype layoutCostOfARow = 16;

QStringView withoutLeadingSpace(QStringView text)
{
    const auto* first = std::find_if_not(text.begin(), text.end(),
                                         [](QChar character) { return character.isSpace(); });
    return text.sliced(first - text.begin());
}

qsizetype commonLength(QStringView one, QStringView other)
{
    const auto [end, _] = std::mismatch(one.begin(), one.end(), other.begin(), other.end());
    const qsizetype length = end - one.begin();
    const bool splitsCharacter = length > 0 && one[length - 1].isHighSurrogate();
    return splitsCharacter ? length - 1 : length;
}

/// How many characters two lists of runs begin with that are the same in text and look.
qsizetype commonLength(const QList<InlineRun>& one, const QList<InlineRun>& other)
{
    qsizetype length = 0;
    for (qsizetype index = 0; index < std::min(one.size(), other.size()); ++index) {
        const InlineRun& left = one[index];
        const InlineRun& right = other[index];
        if (left.styles != right.styles || left.link != right.link)
            break;
        const qsizetype common = commonLength(left.text, right.text);
        length += common;
        if (common < left.text.size() || common < right.text.size())
            break;
    }
    return length;
}

QList<InlineRun> runsOf(const Row& row)
{
    if (row.isVerbatim())
        return verbatimText(row.text);
    if (row.start.form == RowForm::cell) // a pipe is escaped for the table, in code too
        return styledText(row.text.toString().replace(u"\\|"_s, u"|"_s));
    return styledText(row.text);
}

} // namespace

DocumentWriter::DocumentWriter(QTextDocument& document, const RowFormat& format)
    : m_document(document)
    , m_cursor(&document)
    , m_format(format)
{
    m_document.setUndoRedoEnabled(false);
    m_document.setDocumentMargin(0);
    m_document.setDefaultFont(format.font());
}

void DocumentWriter::setText(QStringView text)
{
    text = withoutLeadingSpace(text);
    const qsizetype common = commonLength(m_text, text);
    m_text.truncate(common);
    m_text.append(text.sliced(common));
    takeNote(common);
}

void DocumentWriter::appendText(QStringView piece)
{
    if (m_text.isEmpty())
        piece = withoutLeadingSpace(piece);
    takeNote(m_text.size());
    m_text.append(piece);
}

void DocumentWriter::setFormat(const RowFormat& format)
{
    m_cursor.beginEditBlock();
    keepRows(0);
    m_cursor.endEditBlock();
    m_format = format;
    m_document.setDefaultFont(format.font());
    takeNote(0);
}

void DocumentWriter::setTextColor(const QColor& color)
{
    m_format = RowFormat(m_format.fontSize(), color, m_format.direction());
}

void DocumentWriter::takeNote(qsizetype unchanged)
{
    m_unchanged = std::min(m_unchanged, unchanged);
    m_isComplete = false;
}

/// The last row that begins in what is unchanged; where its block has become one of another kind,
/// the first row of that block.
qsizetype DocumentWriter::firstOpenRow() const
{
    const auto changed =
        std::partition_point(m_rows.begin(), m_rows.end(), [this](const WrittenRow& row) {
            return row.start.offset < m_unchanged;
        });
    if (changed == m_rows.begin())
        return 0;
    const qsizetype last = changed - m_rows.begin() - 1;
    const RowStart& start = m_rows[last].start;
    const qsizetype first = firstRow(start.block);
    const bool isSameKind =
        first == last || RowReader::kindAt(m_text, m_rows[first].start.offset) == start.kind;
    if (!isSameKind)
        return first;
    if (first == last)
        return last;
    // A line of a list may have ceased to be an item, or one of code to be code; then the row
    // before it is the last one.
    const std::optional<Row> row = RowReader(m_text, start).next();
    const bool isThere = row && row->start.offset == start.offset;
    return firstUnsettledRow(first, isThere ? last : last - 1);
}

/// The first row that what follows may still turn into another: the header of a table, which is one
/// by the line below it, or a rule may become text that goes on from the row before.
qsizetype DocumentWriter::firstUnsettledRow(qsizetype first, qsizetype last) const
{
    if (last > first && m_rows[last].start.form == RowForm::rule)
        return last - 1;
    while (last > first && m_rows[last].start.isHeader)
        --last;
    return last;
}

void DocumentWriter::write(const QDeadlineTimer& deadline, qsizetype atLeast)
{
    if (m_isComplete)
        return;
    qsizetype index = firstOpenRow();
    const qsizetype enough = std::max(atLeast, index + 1); // a row more, however long one takes
    RowReader reader(m_text, index < m_rows.size() ? m_rows[index].start : RowStart());
    m_isComplete = true;
    m_cursor.beginEditBlock();
    keepRows(index + 1);
    qsizetype toBeLaidOut = 0;
    while (const std::optional<Row> row = reader.next()) {
        writeRow(index, *row);
        ++index;
        toBeLaidOut += layoutCost(row->text) + layoutCostOfARow;
        if (toBeLaidOut < layoutStep)
            continue;
        toBeLaidOut = 0;
        m_cursor.endEditBlock();
        m_cursor.beginEditBlock();
        if (index > enough && deadline.hasExpired()) {
            m_isComplete = false;
            break;
        }
    }
    keepRows(index);
    m_cursor.endEditBlock();
    m_unchanged = m_text.size();
}

/// Removes all rows from that index on.
void DocumentWriter::keepRows(qsizetype count)
{
    if (count >= m_rows.size())
        return;
    const QTextBlock last = blockOf(std::max<qsizetype>(count - 1, 0));
    m_cursor.setPosition(count == 0 ? 0 : last.position() + last.length() - 1);
    m_cursor.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
    m_cursor.removeSelectedText();
    if (count == 0) {
        m_cursor.setBlockFormat({});
        m_cursor.setBlockCharFormat({});
    }
    m_rows.resize(count);
    m_blocks.erase(std::lower_bound(m_blocks.begin(), m_blocks.end(), count), m_blocks.end());
    m_last.reset();
}

void DocumentWriter::writeRow(qsizetype index, const Row& row)
{
    const WrittenRow written{.start = row.start,
                             .textOffset = row.text.data() - m_text.constData(),
                             .textLength = row.text.size()};
    const bool isSame = isWritten(index, written);
    ShownRow shown{.look = lookOf(row.start)};
    if (isSame && m_last)
        shown.runs = m_last->runs;
    else
        shown.runs = runsOf(row);
    shown.format =
        m_format.block(row, m_format.dependsOnText(row.start) ? plainText(shown.runs) : QString());

    const bool goesOn = index < m_rows.size() && m_last && m_last->look == shown.look;
    if (!goesOn || m_last->format != shown.format)
        placeBlock(index, shown);
    if (!isSame)
        writeText(index, shown, goesOn ? m_last->runs : QList<InlineRun>());

    m_last = std::move(shown);
    m_rows.resize(std::max(m_rows.size(), index + 1));
    m_rows[index] = written;
    if (row.start.block == m_blocks.size())
        m_blocks.append(static_cast<int>(index));
}

/// Whether the text block of that index shows the very same row already.
bool DocumentWriter::isWritten(qsizetype index, const WrittenRow& row) const
{
    if (index >= m_rows.size() || row.textOffset + row.textLength > m_unchanged)
        return false;
    const WrittenRow& old = m_rows[index];
    return old.textOffset == row.textOffset && old.textLength == row.textLength &&
           lookOf(old.start) == lookOf(row.start);
}

/// Sees to it that there is a text block for the row, and that it has the format of the row.
void DocumentWriter::placeBlock(qsizetype index, const ShownRow& row)
{
    const QTextCharFormat& plain = m_format.plain(row.look);
    if (index > 0 && index >= m_rows.size()) {
        m_cursor.setPosition(m_document.characterCount() - 1);
        m_cursor.insertBlock(row.format, plain);
        return;
    }
    const QTextBlock block = blockOf(index);
    m_cursor.setPosition(block.position());
    if (block.blockFormat() != row.format)
        m_cursor.setBlockFormat(row.format);
    if (block.charFormat() != plain)
        m_cursor.setBlockCharFormat(plain);
}

/// Writes a row's text over what it shows already; `old` is empty if that has to go.
void DocumentWriter::writeText(qsizetype index, const ShownRow& row, const QList<InlineRun>& old)
{
    const QTextBlock block = blockOf(index);
    const qsizetype kept = commonLength(old, row.runs);
    m_cursor.setPosition(block.position() + static_cast<int>(kept));
    if (m_cursor.position() < block.position() + block.length() - 1) {
        m_cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        m_cursor.removeSelectedText();
    }
    insertRuns(row, kept);
}

/// Inserts the runs of a row at the cursor, less the first characters.
void DocumentWriter::insertRuns(const ShownRow& row, qsizetype skipped)
{
    for (const InlineRun& run : row.runs) {
        const qsizetype length = run.text.size();
        if (skipped < length)
            m_cursor.insertText(skipped == 0 ? run.text : run.text.sliced(skipped),
                                m_format.run(row.look, run));
        skipped = std::max<qsizetype>(skipped - length, 0);
    }
}

QTextBlock DocumentWriter::blockOf(qsizetype index) const
{
    return m_document.findBlockByNumber(static_cast<int>(index));
}

} // namespace varno
