#pragma once

#include "core/Session.h"

namespace varno {

/// The saved sessions, most recently saved first: at most a hundred, and one for each root query,
/// whatever its case. They are kept for 30 days.
class SessionHistory {
public:
    SessionHistory() = default;
    explicit SessionHistory(QList<Session> sessions);

    [[nodiscard]] const QList<Session>& sessions() const { return m_sessions; }

    /// The session for `query`; null when there is none. Valid until the history changes.
    [[nodiscard]] const Session* find(const QString& query) const;

    /// The root queries of at most `most` written entries, newest first, in whose query or title
    /// each word of `typed` stands somewhere, whatever its case. None for a blank one.
    [[nodiscard]] QStringList matching(const QString& typed, qsizetype most) const;

    /// Puts `session` first, in place of the one for its query.
    void put(const Session& session);

    /// Puts all of `newer` before what is here.
    void put(const SessionHistory& newer);

    void removeOlderThan(ReferenceSeconds date);

    /// The earliest creation date of a session that is still kept at `now`.
    [[nodiscard]] static ReferenceSeconds oldestKept(const QDateTime& now);

private:
    QList<Session> m_sessions;
};

} // namespace varno
