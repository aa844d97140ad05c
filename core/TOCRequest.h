#pragma once

#include "core/Reply.h"
#include "platform/Result.h"

#include <QObject>
#include <QStringList>

namespace varno {

/// A table of contents that is being asked for. The rules are those of EntryStream: destroying the
/// request is its cancellation, `finished` comes at most once, from the event loop.
class TOCRequest final : public QObject {
    Q_OBJECT

public:
    /// The names of the sections.
    using Outcome = Result<QStringList>;

    /// The producer's end; may outlive the request. Any thread.
    using Sink = Reply<Outcome>::Sink;

    TOCRequest() = default;
    Q_DISABLE_COPY_MOVE(TOCRequest)

    [[nodiscard]] Sink sink() { return m_reply.sink(); }

Q_SIGNALS:
    void finished(const varno::TOCRequest::Outcome& outcome);

private:
    Reply<Outcome> m_reply{[this](const Outcome& outcome) { Q_EMIT finished(outcome); }};
};

} // namespace varno
