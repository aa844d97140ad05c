#pragma once

#include "core/Session.h"

#include <QByteArray>

#include <optional>

namespace varno {

/// The most bytes that a history file may have, written or read: more than a full history of the
/// longest entries.
inline constexpr qsizetype largestHistory = 256LL * 1024 * 1024;

/// The history file: a JSON array of sessions, as they stand in the list. Those that would make it
/// longer than `limit` bytes are left out.
QByteArray encodeSessions(const QList<Session>& sessions, qsizetype limit = largestHistory);

struct DecodedSessions {
    QList<Session> sessions;
    int refused = 0; ///< elements of the array that are no sessions
};

/// Nothing when `json` is no JSON array. An element is refused when any part of it is not as
/// `encodeSessions` would have it, or a page stands under another id than its own; unknown members,
/// and "pages" as an object keyed by the ids, are fine. Of a trail, the pages that are not there
/// are left out, but for the first.
std::optional<DecodedSessions> decodeSessions(const QByteArray& json);

} // namespace varno
