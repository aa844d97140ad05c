#include "core/SessionHistory.h"

#include <algorithm>
#include <utility>

namespace varno {
namespace {

constexpr qsizetype mostSessions = 100;
constexpr int daysKept = 30;

auto isFor(const QString& query)
{
    return [lowered = query.toLower()](const Session& session) {
        return session.rootQuery.toLower() == lowered;
    };
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
