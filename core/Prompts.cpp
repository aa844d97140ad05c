#include "core/Prompts.h"

namespace varno {

using namespace Qt::StringLiterals;

QString entryPrompt(EntryType type, const QString& query)
{
    switch (type) {
    case EntryType::definition:
        return u"Write a concise encyclopedia definition for \"%1\". Include etymology if "
               u"relevant. Keep it to 2–4 sentences. After the definition, on a new line write "
               u"exactly: SEE_ALSO_JSON: followed by a JSON array of 4–5 related terms as strings."_s
                   .arg(query);
    case EntryType::shortAnswer:
        return u"Write a brief encyclopedia entry (1 paragraph) answering \"%1\". Use an "
               u"encyclopedic, authoritative tone. After the entry, on a new line write exactly: "
               u"SEE_ALSO_JSON: followed by a JSON array of 4–5 related topics as strings."_s.arg(
                   query);
    case EntryType::full:
        break;
    }
    return u"Write an encyclopedic introduction and overview for \"%1\". This should be 2–3 "
           u"paragraphs covering the essential context, significance, and scope of the topic. "
           u"Write in an authoritative but accessible encyclopedia style. Use ## sub-headings "
           u"(e.g. ## Etymology, ## Background, ## Significance) to divide the content into named "
           u"parts where the topic warrants it. After the entry, on a new line write exactly: "
           u"SEE_ALSO_JSON: followed by a JSON array of 5 related topics as strings."_s.arg(query);
}

QString sectionPrompt(const QString& section, const QString& parentTopic)
{
    return u"Write the \"%1\" section of an encyclopedia article about \"%2\". The reader has "
           u"already read the article's introduction and is fully familiar with the general topic "
           u"— do NOT re-introduce, summarise, or give an overview of \"%2\" itself. Begin "
           u"immediately with the specific content of \"%1\". Write 3–5 focused, substantive "
           u"paragraphs that go deeper than the overview, covering concrete details, mechanisms, "
           u"examples, or analysis relevant only to this section. Do not repeat the section title "
           u"at the very top. You may use ## or ### sub-headings to divide the body into named "
           u"parts if the content warrants it. After the entry, on a new line write exactly: "
           u"SEE_ALSO_JSON: followed by a JSON array of 4–5 related topics as strings."_s.arg(
               section, parentTopic);
}

QString entrySystemPrompt()
{
    return u"You are a concise, authoritative encyclopedia. Write in clear, engaging prose. Use "
           u"British English conventions where appropriate. Do not use # (h1) heading syntax. You "
           u"may use ## and ### for sub-section headings when the content naturally divides into "
           u"named parts. Wrap your entire response — including the SEE_ALSO_JSON line — in "
           u"<entry>…</entry> XML tags. Begin the encyclopedia text immediately after <entry> "
           u"with no preamble, no acknowledgements, and no commentary about searching or "
           u"gathering information. Output only the <entry>…</entry> block, nothing outside it."_s;
}

QString tocPrompt(const QString& topic)
{
    return u"For the topic \"%1\", generate a table of contents for a comprehensive encyclopedia "
           u"entry. The introductory overview is already written separately, so do NOT include "
           u"\"Overview\", \"Introduction\", or \"Summary\" as sections — only body sections. "
           u"Return ONLY a JSON array of 5–8 section name strings. Example: [\"Historical "
           u"Background\",\"Key Principles\",\"Contemporary "
           u"Applications\",\"Critiques\",\"Further Reading\"]"_s.arg(topic);
}

QString tocSystemPrompt()
{
    return u"You return only valid JSON arrays. Use British English spelling in all section names."_s;
}

} // namespace varno
