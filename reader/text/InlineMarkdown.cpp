#include "reader/text/InlineMarkdown.h"

#include "reader/text/Characters.h"
#include "reader/text/MarkdownSource.h"

#include <md4c-html.h>
#include <md4c.h>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace varno {
namespace {

constexpr QChar lineSeparator(0x2028);

/// A style that a pair of tags gives, by the name of the tag.
std::optional<std::size_t> tagStyle(QByteArrayView name)
{
    static const std::map<QByteArray, std::size_t> styles = {
        {"b", 0}, {"strong", 0}, {"i", 1}, {"em", 1},  {"code", 2}, {"kbd", 2},
        {"s", 3}, {"del", 3},    {"u", 4}, {"ins", 4}, {"sub", 5},  {"sup", 6}};
    const auto found = styles.find(name.toByteArray().toLower());
    return found == styles.end() ? std::nullopt : std::optional(found->second);
}

constexpr std::array styleOrder = {InlineStyle::strong,     InlineStyle::emphasis,
                                   InlineStyle::code,       InlineStyle::strikethrough,
                                   InlineStyle::underline,  InlineStyle::subscript,
                                   InlineStyle::superscript};
constexpr std::size_t styleCount = styleOrder.size();

/// What the parser's calls add up to.
class RunBuilder {
public:
    explicit RunBuilder(const MarkdownSource& source)
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
    void addTag(QByteArrayView tag);
    void closeTag(std::size_t style);
    [[nodiscard]] bool endsWithGuard(QByteArrayView text) const;
    [[nodiscard]] InlineStyles styles() const;

    struct Tag {
        std::size_t style;
        qsizetype run; ///< that shows it, until it turns out to be one of a pair
    };

    const MarkdownSource& m_source;
    QList<InlineRun> m_runs;
    std::array<int, styleCount> m_depths = {};      ///< how many spans of each style are open
    std::vector<Tag> m_tags;                        ///< that wait for their ends
    std::array<int, styleCount> m_waiting = {};     ///< how many of each style do
    std::vector<std::pair<Tag, qsizetype>> m_pairs; ///< of tags, and the run after each
    bool m_isSplit = false;                         ///< whether what comes next is a run of its own
    QString m_link;
    int m_imageDepth = 0;       ///< what is within an image is plain text
    bool m_lineWrapped = false; ///< the last character is the space between two wrapped lines
};

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
        address += attribute.substr_types[part] == MD_TEXT_ENTITY ? decodedEntity(text)
                                                                  : decodedMarkdown(text);
    }
    return address;
}

/// The runs, in the styles that pairs of tags give them.
QList<InlineRun> RunBuilder::take()
{
    if (m_pairs.empty() && m_tags.empty())
        return std::move(m_runs);
    std::vector<std::array<int, styleCount>> changes(static_cast<std::size_t>(m_runs.size()) + 1);
    for (const auto& [tag, end] : m_pairs) {
        ++changes[static_cast<std::size_t>(tag.run)][tag.style];
        --changes[static_cast<std::size_t>(end)][tag.style];
    }
    QList<InlineRun> runs;
    std::array<int, styleCount> depths = {};
    for (qsizetype index = 0; index < m_runs.size(); ++index) {
        InlineRun& run = m_runs[index];
        for (std::size_t style = 0; style < styleCount; ++style) {
            depths[style] += changes[static_cast<std::size_t>(index)][style];
            if (depths[style] > 0)
                run.styles.setFlag(styleOrder[style]);
        }
        const bool goesOn =
            !runs.isEmpty() && runs.last().styles == run.styles && runs.last().link == run.link;
        if (goesOn)
            runs.last().text += run.text;
        else if (!run.text.isEmpty())
            runs.append(std::move(run));
    }
    return runs;
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
    case MD_TEXT_HTML:
        addTag(text);
        break;
    default:
        addUnguarded(text);
    }
}

/// Adds a tag as text, or takes it for what it means if that is plain.
void RunBuilder::addTag(QByteArrayView tag)
{
    if (tag == "\n") {
        append(u" ");
        m_lineWrapped = true;
        return;
    }
    const bool isEnd = tag.startsWith("</");
    QByteArrayView name = tag.sliced(isEnd ? 2 : 1).chopped(1).trimmed();
    if (name.endsWith('/'))
        name = name.chopped(1).trimmed();
    const auto style = m_imageDepth > 0 ? std::nullopt : tagStyle(name);
    if (!isEnd && name.compare("br", Qt::CaseInsensitive) == 0) {
        append(QStringView(&lineSeparator, 1));
    } else if (style && isEnd && m_waiting[*style] > 0) {
        closeTag(*style);
    } else if (style && !isEnd) {
        m_isSplit = true;
        addUnguarded(tag);
        m_tags.push_back({*style, m_runs.size() - 1});
        ++m_waiting[*style];
        m_isSplit = true;
    } else {
        addUnguarded(tag);
    }
}

/// Closes the last tag of a style that is open, and gives up those within it that are not closed.
void RunBuilder::closeTag(std::size_t style)
{
    while (m_tags.back().style != style) {
        --m_waiting[m_tags.back().style];
        m_tags.pop_back();
    }
    m_runs[m_tags.back().run].text.clear();
    m_pairs.emplace_back(m_tags.back(), m_runs.size());
    --m_waiting[style];
    m_tags.pop_back();
    m_isSplit = true;
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
                append(decodedMarkdown(text.first(before)));
            if (m_lineWrapped &&
                std::binary_search(m_source.breaks.begin(), m_source.breaks.end(), *next))
                m_runs.last().text.back() = lineSeparator;
            addUnguarded(text.sliced(before + markdownGuard.size()));
            return;
        }
    }
    append(decodedMarkdown(text));
}

bool RunBuilder::endsWithGuard(QByteArrayView text) const
{
    const qsizetype end = text.data() + text.size() - m_source.text.constData();
    return !m_runs.isEmpty() && std::binary_search(m_source.guards.begin(), m_source.guards.end(),
                                                   end - markdownGuard.size());
}

void RunBuilder::append(QStringView text)
{
    if (text.isEmpty())
        return;
    const InlineStyles now = styles();
    const bool isSplit = std::exchange(m_isSplit, false);
    if (isSplit || m_runs.isEmpty() || m_runs.last().styles != now || m_runs.last().link != m_link)
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
    .flags = MD_FLAG_NOHTMLBLOCKS | MD_FLAG_NOINDENTEDCODEBLOCKS | MD_FLAG_STRIKETHROUGH |
             MD_FLAG_PERMISSIVEURLAUTOLINKS | MD_FLAG_PERMISSIVEWWWAUTOLINKS,
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
    const MarkdownSource source = markdownSource(markdown);
    RunBuilder runs(source);
    if (md_parse(source.text.constData(), static_cast<MD_SIZE>(source.text.size()), &parser,
                 &runs) != 0)
        return verbatimText(markdown);
    return runs.take();
}

QList<InlineRun> verbatimText(QStringView text)
{
    if (text.isEmpty())
        return {};
    QString shown = text.toString().replace(u'\n', lineSeparator);
    std::transform(shown.begin(), shown.end(), shown.begin(), documentCharacter);
    return {{.text = shown, .styles = {}, .link = {}}};
}

QString plainText(const QList<InlineRun>& runs)
{
    QString text;
    for (const InlineRun& run : runs)
        text += run.text;
    return text;
}

} // namespace varno
