#include "bench/Samples.h"

#include "core/EntryText.h"
#include "demo/EntryLibrary.h"

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;

constexpr int sessionCount = 100;
constexpr int sectionCount = 6;
constexpr qsizetype sectionLength = 6000;
constexpr qsizetype leadLength = 2500;

QString wholeLibrary()
{
    QString all;
    const EntryLibrary library;
    for (const LibraryTopic& topic : library.topics()) {
        if (topic.article)
            all += cleanEntryText(*topic.article) + u"\n\n"_s;
        for (const LibrarySection& section : topic.sections)
            all += cleanEntryText(section.text) + u"\n\n"_s;
    }
    return all;
}

/// Takes its text from the start of `texts`.
Page page(const QString& title, QStringView& texts, qsizetype length)
{
    Page page;
    page.id = QUuid::createUuid();
    page.title = title;
    page.content = texts.first(length).toString();
    texts = texts.sliced(length);
    return page;
}

Session session(int number, QStringView& texts)
{
    Page root = page(u"Article number %1"_s.arg(number), texts, leadLength);
    for (int i = 1; i <= sectionCount; ++i) {
        root.tableOfContents.append(u"Section number %1"_s.arg(i));
        root.seeAlso.append(u"Topic number %1"_s.arg(i));
    }
    Session session;
    session.id = QUuid::createUuid();
    session.rootQuery = root.title;
    session.createdAt = 780000000.125 + number;
    session.push(root);
    for (const QString& name : root.tableOfContents) {
        Page section = page(name, texts, sectionLength);
        section.parentPageId = root.id;
        section.parentSectionName = name;
        session.push(section);
        session.revisit(root.id);
    }
    return session;
}

} // namespace

QString pageSample(qsizetype length)
{
    static const QString library = wholeLibrary();
    return library.repeated(length / library.size() + 1).first(length);
}

QList<Session> historySample()
{
    const QString all = pageSample(sessionCount * (leadLength + sectionCount * sectionLength));
    QStringView texts = all;
    QList<Session> sessions;
    for (int number = 1; number <= sessionCount; ++number)
        sessions.append(session(number, texts));
    return sessions;
}

} // namespace varno::bench
