#include "demo/ModelAnswer.h"

#include "core/JsonWriter.h"
#include "demo/Question.h"

namespace varno {
namespace {

using namespace Qt::StringLiterals;

QString jsonArray(const QStringList& names)
{
    JsonWriter writer;
    writer.beginArray();
    for (const QString& name : names)
        writer.string(name);
    writer.endArray();
    return QString::fromUtf8(writer.text());
}

QString tagged(const QString& text, const QString& topic)
{
    const bool remark = topic.size() % 3 == 0;
    return (remark ? u"Certainly, here is the entry.\n\n"_s : QString()) + u"<entry>"_s + text +
           u"</entry>"_s;
}

QStringList titles(const EntryLibrary& library)
{
    QStringList titles;
    for (const LibraryTopic& topic : library.topics())
        titles.append(topic.title);
    return titles;
}

/// Five topics of the library, not the same ones for everything that is missing.
QString relatedTopics(const EntryLibrary& library, const QString& missing)
{
    const QStringList all = titles(library);
    QStringList some;
    for (qsizetype i = 0; i < qMin(5, all.size()); ++i)
        some.append(all[(missing.size() + i) % all.size()]);
    return u"\n\nSEE_ALSO_JSON: "_s + jsonArray(some) + u'\n';
}

QString apology(const QString& missing)
{
    return u"Nothing is written here on “%1”. This is a demonstration: in place of a language "
           u"model a small library answers, and it knows only what was put into it."_s.arg(missing);
}

/// An entry of the kind asked for that says what is missing.
QString missingEntry(const EntryLibrary& library, const QString& missing, EntryType type)
{
    const QStringList all = titles(library);
    const QString text =
        type == EntryType::full
            ? apology(missing) + u"\n\n## What the Library Holds\n\n- "_s + all.join(u"\n- "_s)
            : apology(missing) + u" It holds entries on these topics: "_s + all.join(u"; "_s) +
                  u'.';
    return tagged(text + relatedTopics(library, missing), missing);
}

QString answer(const EntryLibrary& library, const EntryQuestion& question)
{
    const LibraryTopic* topic = library.find(question.topic);
    const std::optional<QString> text = topic ? topic->entry(question.type) : std::nullopt;
    return text ? tagged(*text, question.topic)
                : missingEntry(library, question.topic, question.type);
}

QString answer(const EntryLibrary& library, const SectionQuestion& question)
{
    const LibraryTopic* topic = library.find(question.topic);
    const LibrarySection* section = topic ? topic->section(question.section) : nullptr;
    if (section)
        return tagged(section->text, question.section);
    return missingEntry(library, u"%1: %2"_s.arg(question.topic, question.section),
                        EntryType::shortAnswer);
}

QString answer(const EntryLibrary& library, const TOCQuestion& question)
{
    QStringList names;
    if (const LibraryTopic* topic = library.find(question.topic)) {
        for (const LibrarySection& section : topic->sections)
            names.append(section.name);
    }
    const bool fenced = question.topic.size() % 2 == 1;
    return fenced ? u"Here is the table of contents:\n\n```json\n%1\n```\n"_s.arg(jsonArray(names))
                  : jsonArray(names);
}

} // namespace

QString modelAnswer(const EntryLibrary& library, const QString& prompt)
{
    if (const std::optional<Question> question = readPrompt(prompt))
        return std::visit([&](const auto& asked) { return answer(library, asked); }, *question);
    return missingEntry(library, prompt.simplified().left(80), EntryType::shortAnswer);
}

} // namespace varno
