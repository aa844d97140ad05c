#include "reader/text/InlineMarkdown.h"

#include "reader/text/BlockMark.h"
#include "reader/text/Characters.h"

#include <QVarLengthArray>

#include <md4c-html.h>
#include <md4c.h>

#include <algorithm>
#include <array>
#include <optional>

namespace varno {
namespace {

constexpr QChar lineSeparator(0x2028);

/// Stands before what would open a block, so that it does not. Blank for all rules of emphasis, and
/// yet no blank to the rules of blocks.
constexpr QByteArrayView guard("\xC2\xA0");

/// Stands for a tilde that strikes nothing: to the parser, which would pair it with the next one, a
/// mark of punctuation like any other. No valid UTF-8 has these two bytes.
constexpr QByteArrayView loneTilde("\xC1\xBE");

/// A paragraph as the parser gets it.
struct Source {
    QByteArray text;                      ///< UTF-8
    QVarLengthArray<qsizetype, 8> guards; ///< where a guard stands
    QVarLengthArray<qsizetype, 8> breaks; ///< which of them begin a line of their own
};

/// Whether a line with that mark begins anew rather than going on. A number that is not the first
/// of its list, and a mark with nothing after it, may just have come to stand there.
bool beginsAnew(BlockMark mark, QStringView line, BlockMark previous)
{
    return (mark == BlockMark::other && line.trimmed().size() > 1) ||
           (mark == BlockMark::orderedItem && (previous == BlockMark::orderedItem ||
                                               line.startsWith(u"1.") || line.startsWith(u"1)")));
}

/// Appends a line with `loneTilde` for each tilde that has none beside it. One that is escaped is
/// none to those beside it.
void appendLine(QByteArray& text, QByteArrayView line)
{
    if (!line.contains('~')) {
        text += line;
        return;
    }
    bool isEscaped = false;
    while (!line.isEmpty()) {
        const bool isMark = line.front() == '~' && !isEscaped;
        qsizetype length = 1;
        while (isMark && length < line.size() && line[length] == '~')
            ++length;
        text += isMark && length == 1 ? loneTilde : line.first(length);
        isEscaped = line.front() == '\\' && !isEscaped;
        line = line.sliced(length);
    }
}

QString decoded(QByteArrayView text)
{
    if (!text.contains(loneTilde.front()))
        return QString::fromUtf8(text);
    return QString::fromUtf8(text.toByteArray().replace(loneTilde, "~"));
}

Source prepared(QStringView markdown)
{
    Source source;
    source.text.reserve(markdown.size() + markdown.size() / 8);
    BlockMark previous = BlockMark::none;
    for (QStringView line : markdown.tokenize(u'\n')) {
        line = withoutLeadingBlanks(line);
        if (!source.text.isEmpty())
            source.text += '\n';
        const BlockMark mark = blockMark(line);
        if (mark != BlockMark::none) {
            if (beginsAnew(mark, line, previous) && !source.text.isEmpty())
                source.breaks.append(source.text.size());
            source.guards.append(source.text.size());
            source.text += guard;
        }
        appendLine(source.text, line.toUtf8());
        previous = mark;
    }
    return source;
}

/// What the parser's calls add up to.
class RunBuilder {
public:
    explicit RunBuilder(const Source& source)
        : m_source(source)
    {
    }

    [[nodiscard]] QList<InlineRun> take();

    void enterParagraph();
    void enter(MD_SPANTYPE span, void* detail);
    void leave(MD_SPANTYPE span);
    void add(MD_TEXTTYPE type, QByteArrayView text);

private:
    void append(QStringView text);
    void addUnguarded(QByteArrayView text);
    [[nodiscard]] bool endsWithGuard(QByteArrayView text) const;
    [[nodiscard]] InlineStyles styles() const;

    const Source& m_source;
    QList<InlineRun> m_runs;
    std::array<int, 4> m_depths = {}; ///< how many spans of each style are open
    QString m_link;
    int m_imageDepth = 0;       ///< what is within an image is plain text
    bool m_lineWrapped = false; ///< the last character is the space between two wrapped lines
};

constexpr std::array styleOrder = {InlineStyle::strong, InlineStyle::emphasis, InlineStyle::code,
                                   InlineStyle::strikethrough};

std::optional<std::size_t> styleIndex(MD_SPANTYPE span)
{
    switch (span) {
    case MD_SPAN_STRONG:
        return 0;
    case MD_SPAN_EM:
        return 1;
    case MD_SPAN_CODE:
        return 2;
    case MD_SPAN_DEL:
        return 3;
    default:
        return std::nullopt;
    }
}

/// The characters that an entity such as "&amp;" stands for.
QString decodedEntity(QByteArrayView entity)
{
    QByteArray html;
    const auto collect = [](const MD_CHAR* text, MD_SIZE size, void* result) {
        static_cast<QByteArray*>(result)->append(text, size);
    };
    md_html(entity.data(), static_cast<MD_SIZE>(entity.size()), collect, &html, 0, 0);
    html.replace("<p>", "").replace("</p>", "");
    if (html.endsWith('\n'))
        html.chop(1);
    html.replace("&lt;", "<").replace("&gt;", ">").replace("&quot;", "\"").replace("&amp;", "&");
    return QString::fromUtf8(html);
}

QString decodedAddress(const MD_ATTRIBUTE& attribute)
{
    QString address;
    for (int part = 0; attribute.substr_offsets[part] < attribute.size; ++part) {
        const MD_OFFSET begin = attribute.substr_offsets[part];
        const QByteArrayView text(attribute.text + begin,
                                  attribute.substr_offsets[part + 1] - begin);
        address +=
            attribute.substr_types[part] == MD_TEXT_ENTITY ? decodedEntity(text) : decoded(text);
    }
    return address;
}

QList<InlineRun> RunBuilder::take()
{
    return std::move(m_runs);
}

void RunBuilder::enterParagraph()
{
    if (!m_runs.isEmpty())
        append(QStringView(&lineSeparator, 1));
}

void RunBuilder::enter(MD_SPANTYPE span, void* detail)
{
    if (span == MD_SPAN_IMG)
        ++m_imageDepth;
    if (m_imageDepth > 0)
        return;
    if (const auto style = styleIndex(span))
        ++m_depths[*style];
    if (span == MD_SPAN_A)
        m_link = decodedAddress(static_cast<const MD_SPAN_A_DETAIL*>(detail)->href);
}

void RunBuilder::leave(MD_SPANTYPE span)
{
    if (m_imageDepth > 0) {
        m_imageDepth -= span == MD_SPAN_IMG ? 1 : 0;
        return;
    }
    if (const auto style = styleIndex(span))
        --m_depths[*style];
    if (span == MD_SPAN_A)
        m_link.clear();
}

void RunBuilder::add(MD_TEXTTYPE type, QByteArrayView text)
{
    switch (type) {
    case MD_TEXT_BR:
        append(QStringView(&lineSeparator, 1));
        break;
    case MD_TEXT_SOFTBR:
        append(u" ");
        m_lineWrapped = true;
        break;
    case MD_TEXT_NULLCHAR:
        append(QStringView(u"\uFFFD"));
        break;
    case MD_TEXT_ENTITY:
        append(decodedEntity(text));
        break;
    case MD_TEXT_CODE:
        addUnguarded(text);
        if (endsWithGuard(text)) // which kept blanks in that are none of the code
            m_runs.last().text = m_runs.last().text.trimmed();
        break;
    default:
        addUnguarded(text);
    }
}

/// Adds text of the source, less the guards in it.
void RunBuilder::addUnguarded(QByteArrayView text)
{
    const qsizetype begin = text.data() - m_source.text.constData();
    if (begin >= 0 && begin <= m_source.text.size()) {
        const auto* next = std::lower_bound(m_source.guards.begin(), m_source.guards.end(), begin);
        if (next != m_source.guards.end() && *next < begin + text.size()) {
            const qsizetype before = *next - begin;
            if (before > 0)
                append(decoded(text.first(before)));
            if (m_lineWrapped &&
                std::binary_search(m_source.breaks.begin(), m_source.breaks.end(), *next))
                m_runs.last().text.back() = lineSeparator;
            addUnguarded(text.sliced(before + guard.size()));
            return;
        }
    }
    append(decoded(text));
}

bool RunBuilder::endsWithGuard(QByteArrayView text) const
{
    const qsizetype end = text.data() + text.size() - m_source.text.constData();
    return !m_runs.isEmpty() &&
           std::binary_search(m_source.guards.begin(), m_source.guards.end(), end - guard.size());
}

void RunBuilder::append(QStringView text)
{
    if (text.isEmpty())
        return;
    const InlineStyles now = styles();
    if (m_runs.isEmpty() || m_runs.last().styles != now || m_runs.last().link != m_link)
        m_runs.append({.text = {}, .styles = now, .link = m_link});
    QString& shown = m_runs.last().text;
    const qsizetype begin = shown.size();
    shown += text;
    std::transform(shown.begin() + begin, shown.end(), shown.begin() + begin, documentCharacter);
    m_lineWrapped = false;
}

InlineStyles RunBuilder::styles() const
{
    InlineStyles result;
    for (std::size_t style = 0; style < styleOrder.size(); ++style)
        result.setFlag(styleOrder[style], m_depths[style] > 0);
    return result;
}

RunBuilder& builder(void* data)
{
    return *static_cast<RunBuilder*>(data);
}

constexpr MD_PARSER parser = {
    .abi_version = 0,
    .flags = MD_FLAG_NOHTML | MD_FLAG_NOINDENTEDCODEBLOCKS | MD_FLAG_STRIKETHROUGH,
    .enter_block =
        [](MD_BLOCKTYPE type, void*, void* data) {
            if (type == MD_BLOCK_P)
                builder(data).enterParagraph();
            return 0;
        },
    .leave_block = [](MD_BLOCKTYPE, void*, void*) { return 0; },
    .enter_span =
        [](MD_SPANTYPE type, void* detail, void* data) {
            builder(data).enter(type, detail);
            return 0;
        },
    .leave_span =
        [](MD_SPANTYPE type, void*, void* data) {
            builder(data).leave(type);
            return 0;
        },
    .text =
        [](MD_TEXTTYPE type, const MD_CHAR* text, MD_SIZE size, void* data) {
            builder(data).add(type, QByteArrayView(text, size));
            return 0;
        },
    .debug_log = nullptr,
    .syntax = nullptr,
};

} // namespace

QList<InlineRun> styledText(QStringView markdown)
{
    const Source source = prepared(markdown);
    RunBuilder runs(source);
    if (md_parse(source.text.constData(), static_cast<MD_SIZE>(source.text.size()), &parser,
                 &runs) != 0)
        return {
            {.text = markdown.toString().replace(u'\n', lineSeparator), .styles = {}, .link = {}}};
    return runs.take();
}

QString plainText(const QList<InlineRun>& runs)
{
    QString text;
    for (const InlineRun& run : runs)
        text += run.text;
    return text;
}

} // namespace varno
