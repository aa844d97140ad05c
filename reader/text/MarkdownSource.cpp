#include "reader/text/MarkdownSource.h"

#include "reader/text/BlockMark.h"
#include "reader/text/Characters.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

namespace varno {
namespace {

/// The bytes that a character is hidden from the parser in, which takes them for part of a word.
/// They are an encoding that no valid UTF-8 has.
QByteArray hidden(char character)
{
    const auto code = static_cast<unsigned char>(character);
    const std::array bytes = {static_cast<char>(0xC0U | (code >> 6U)),
                              static_cast<char>(0x80U | (code & 0x3FU))};
    return {bytes.data(), bytes.size()};
}

bool isHiding(char byte)
{
    return byte == '\xC0' || byte == '\xC1';
}

bool isPunctuation(char byte)
{
    const auto code = static_cast<unsigned char>(byte);
    return code < 0x80 && std::ispunct(code) != 0;
}

/// The end of a formula that begins with those two characters; empty if none does.
QStringView formulaEnd(QStringView mark)
{
    if (mark == u"\\(")
        return u"\\)";
    if (mark == u"\\[")
        return u"\\]";
    return mark == u"$$" ? QStringView(u"$$") : QStringView();
}

/// The number of an ordered item.
int numberOf(QStringView line)
{
    int number = 0;
    for (const QChar digit : line) {
        if (digit < u'0' || digit > u'9')
            break;
        number = number * 10 + digit.digitValue();
    }
    return number;
}

/// Reads a paragraph line by line and hides from the parser what it would take for marks.
class SourceWriter {
public:
    explicit SourceWriter(QStringView markdown)
        : m_markdown(markdown)
    {
        m_source.text.reserve(markdown.size() + markdown.size() / 8);
    }

    [[nodiscard]] MarkdownSource write();

private:
    void writeLine(QStringView line);
    [[nodiscard]] bool beginsAnew(BlockMark mark, QStringView line) const;
    void appendText(QByteArrayView text);
    QStringView appendFormula(QStringView line);
    [[nodiscard]] bool isClosed(QStringView formula, QStringView end);

    QStringView m_markdown;
    MarkdownSource m_source;
    BlockMark m_previous = BlockMark::none;
    int m_number = 0;              ///< of the last item that has one
    QStringView m_formulaEnd;      ///< of the open formula; empty when none is open
    bool m_isAfterFormula = false; ///< whether the line before ends with a formula of its own
    QStringView m_unclosed;        ///< an end that does not occur any more
};

MarkdownSource SourceWriter::write()
{
    for (const QStringView line : m_markdown.tokenize(u'\n'))
        writeLine(withoutLeadingBlanks(line));
    return std::move(m_source);
}

void SourceWriter::writeLine(QStringView line)
{
    const bool isFirst = m_source.text.isEmpty();
    if (!isFirst)
        m_source.text += '\n';
    const BlockMark mark = blockMark(line);
    const bool isOfFormula = !m_formulaEnd.isEmpty() || m_isAfterFormula ||
                             line.startsWith(u"\\[") || line.startsWith(u"$$");
    if (mark != BlockMark::none || isOfFormula) {
        if ((isOfFormula || beginsAnew(mark, line)) && !isFirst)
            m_source.breaks.append(m_source.text.size());
        m_source.guards.append(m_source.text.size());
        m_source.text += markdownGuard;
    }
    if (mark == BlockMark::orderedItem)
        m_number = numberOf(line);
    m_previous = mark;
    m_isAfterFormula = false;
    while (!line.isEmpty())
        line = appendFormula(line);
}

/// Whether a line with that mark begins anew rather than going on. A number that does not go on
/// from another, and a mark with nothing after it, may just have come to stand there.
bool SourceWriter::beginsAnew(BlockMark mark, QStringView line) const
{
    if (mark == BlockMark::orderedItem)
        return m_previous == BlockMark::orderedItem || m_previous == BlockMark::other ||
               numberOf(line) == 1 || (m_number > 0 && numberOf(line) == m_number + 1);
    return mark == BlockMark::other && line.trimmed().size() > 1;
}

/// Appends what comes up to the end of the open formula, or the text up to the next one; returns
/// the rest.
QStringView SourceWriter::appendFormula(QStringView line)
{
    if (!m_formulaEnd.isEmpty()) {
        const qsizetype end = line.indexOf(m_formulaEnd);
        const qsizetype length = end < 0 ? line.size() : end + m_formulaEnd.size();
        for (const char byte : line.first(length).toUtf8())
            m_source.text += isPunctuation(byte) ? hidden(byte) : QByteArray(1, byte);
        const bool isOfItsOwn = m_formulaEnd != u"\\)";
        if (end >= 0)
            m_formulaEnd = {};
        m_isAfterFormula = end >= 0 && isOfItsOwn && line.sliced(length).trimmed().isEmpty();
        return line.sliced(length);
    }
    const auto nextMark = [line](qsizetype from) {
        const auto* found = std::find_if(line.begin() + from, line.end(), [](QChar character) {
            return character == u'\\' || character == u'$';
        });
        return found - line.begin();
    };
    for (qsizetype position = nextMark(0); position + 1 < line.size();) {
        const QStringView mark = line.sliced(position, 2);
        const QStringView end = formulaEnd(mark);
        if (!end.isEmpty() && isClosed(line.sliced(position + 2), end)) {
            appendText(line.first(position).toUtf8());
            for (const QChar character : mark)
                m_source.text += hidden(character.toLatin1());
            m_formulaEnd = end;
            return line.sliced(position + 2);
        }
        if (mark[0] == u'\\' && QStringView(u"()[],").contains(mark[1])) {
            appendText(line.first(position).toUtf8());
            m_source.text += hidden('\\');
            return line.sliced(position + 1);
        }
        position = nextMark(std::min(position + (mark[0] == u'\\' ? 2 : 1), line.size()));
    }
    appendText(line.toUtf8());
    return {};
}

bool SourceWriter::isClosed(QStringView formula, QStringView end)
{
    if (end == m_unclosed)
        return false;
    if (m_markdown.indexOf(end, formula.data() - m_markdown.data()) >= 0)
        return true;
    m_unclosed = end;
    return false;
}

/// Appends text with each tilde hidden that has none beside it, which strikes nothing: the parser
/// would pair it with the next one. One that is escaped is none to those beside it.
void SourceWriter::appendText(QByteArrayView text)
{
    if (!text.contains('~')) {
        m_source.text += text;
        return;
    }
    bool isEscaped = false;
    while (!text.isEmpty()) {
        const bool isMark = text.front() == '~' && !isEscaped;
        qsizetype length = 1;
        while (isMark && length < text.size() && text[length] == '~')
            ++length;
        if (isMark && length == 1)
            m_source.text += hidden('~');
        else
            m_source.text += text.first(length);
        isEscaped = text.front() == '\\' && !isEscaped;
        text = text.sliced(length);
    }
}

} // namespace

MarkdownSource markdownSource(QStringView paragraph)
{
    return SourceWriter(paragraph).write();
}

QString decodedMarkdown(QByteArrayView text)
{
    if (std::none_of(text.begin(), text.end(), isHiding))
        return QString::fromUtf8(text);
    QByteArray shown;
    for (qsizetype position = 0; position < text.size(); ++position) {
        if (!isHiding(text[position]) || position + 1 == text.size()) {
            shown += text[position];
            continue;
        }
        const auto high = static_cast<unsigned char>(text[position]);
        const auto low = static_cast<unsigned char>(text[++position]);
        shown += static_cast<char>(((high & 1U) << 6U) | (low & 0x3FU));
    }
    return QString::fromUtf8(shown);
}

} // namespace varno
