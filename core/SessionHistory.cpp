#include "core/SessionHistory.h"

#include <algorithm>
#include <utility>

namespace varno {
namespace {

constexpr qsizetype mostSessions = 100;
constexpr int daysKept = 30;
constexpr qsizetype lookedAt = 256; ///< letters of a query and a title; rows show no more

auto isFor(const QString& query)
{
    return [lowered = query.toLower()](const Session& session) {
        return session.rootQuery.toLower() == lowered;
    };
}

bool matches(const Session& session, const QStringList& words)
{
    const Page* root = session.rootPage();
    if (!root || root->content.isEmpty())
        return false;
    const auto start = [](const QString& text) { return QStringView(text).left(lookedAt); };
    return std::ranges::all_of(
        words, [query = start(session.rootQuery), title = start(root->title)](const QString& word) {
            return query.contains(word, Qt::CaseInsensitive) ||
                   title.contains(word, Qt::CaseInsensitive);
        });
}

} // namespace

SessionHistory::SessionHistory(QList<Session> sessions)
    : m_sessions(std::move(sessions))
{
}

const Session* SessionHistory::find(const QString& query) const
{
    const auto found = std::find_if(m_sessions.begin(), m_sessions.end(), isFor(query));
    return found == m_sessions.end() ? nullptr : &*found;
}

QStringList SessionHistory::matching(const QString& typed, qsizetype most) const
{
    QStringList queries;
    const QStringList words = typed.simplified().split(u' ', Qt::SkipEmptyParts);
    if (words.isEmpty())
        return queries;
    for (const Session& session : m_sessions) {
        if (queries.size() == most)
            break;
        if (matches(session, words))
            queries.append(session.rootQuery);
    }
    return queries;
}

void SessionHistory::put(const Session& session)
{
    m_sessions.removeIf(isFor(session.rootQuery));
    m_sessions.prepend(session);
    if (m_sessions.size() > mostSessions)
        m_sessions.resize(mostSessions);
}

void SessionHistory::put(const SessionHistory& newer)
{
    std::for_each(newer.m_sessions.rbegin(), newer.m_sessions.rend(),
                  [this](const Session& session) { put(session); });
}

ReferenceSeconds SessionHistory::oldestKept(const QDateTime& now)
{
    return toReferenceSeconds(now.addDays(-daysKept));
}

void SessionHistory::removeOlderThan(ReferenceSeconds date)
{
    m_sessions.removeIf([date](const Session& session) { return session.createdAt < date; });
}

} // namespace varno
