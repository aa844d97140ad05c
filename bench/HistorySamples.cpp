#include "bench/HistorySamples.h"

#include "bench/Prose.h"

namespace varno::bench {
namespace {

constexpr int sessionCount = 100;
constexpr int sectionCount = 6;
constexpr int sectionLength = 6000;
constexpr int leadLength = 2500;

Page page(Prose& prose, int length)
{
    Page page;
    page.id = QUuid::createUuid();
    page.title = prose.text(prose.number(8, 40));
    page.content = prose.text(prose.number(length * 3 / 4, length * 5 / 4));
    return page;
}

Page article(Prose& prose)
{
    Page article = page(prose, leadLength);
    for (int i = 0; i < sectionCount; ++i) {
        article.tableOfContents.append(prose.text(prose.number(8, 30)));
        article.seeAlso.append(prose.text(prose.number(8, 20)));
    }
    return article;
}

Session session(Prose& prose)
{
    const Page root = article(prose);
    Session session;
    session.id = QUuid::createUuid();
    session.rootQuery = root.title;
    session.createdAt = 780000000.125 + prose.number(0, 1000000);
    session.push(root);
    for (const QString& name : root.tableOfContents) {
        Page section = page(prose, sectionLength);
        section.parentPageId = root.id;
        section.parentSectionName = name;
        session.push(section);
        session.revisit(root.id);
    }
    return session;
}

} // namespace

QList<Session> historySample()
{
    Prose prose(1);
    QList<Session> sessions;
    for (int i = 0; i < sessionCount; ++i)
        sessions.append(session(prose));
    return sessions;
}

} // namespace varno::bench
