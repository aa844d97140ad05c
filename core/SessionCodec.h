#pragma once

#include "core/Session.h"

#include <QByteArray>

#include <optional>

namespace varno {

/// The history file: a JSON array of sessions, as they stand in the list.
QByteArray encodeSessions(const QList<Session>& sessions);

/// Nothing when any part of `json` is not as `encodeSessions` would have it; unknown members, and
/// "pages" as an object keyed by the ids, are fine.
std::optional<QList<Session>> decodeSessions(const QByteArray& json);

} // namespace varno
