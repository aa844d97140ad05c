#pragma once

#include "core/Reply.h"
#include "platform/Result.h"

#include <QObject>
#include <QString>

#include <utility>

namespace varno {

/// The text of an entry as it arrives. Whoever owns the stream listens; destroying it is the
/// cancellation, silent.
///
/// Signals come on the thread that made the stream, from its event loop, never from inside the call
/// that started it: any number of `piece`, then `finished` at most once, and nothing after
/// destruction. A slot may destroy the stream; while it runs, also in an event loop of its own,
/// nothing follows.
class EntryStream final : public QObject {
    Q_OBJECT

public:
    struct Completed {
        bool operator==(const Completed&) const = default;
    };
    using Outcome = Result<Completed>;

    /// The producer's end. May outlive the stream, is freely copied and used from any thread; what
    /// is sent to a stream that is finished or gone is dropped.
    class Sink {
    public:
        void send(const QString& piece) const
        {
            m_sink.send([stream = m_stream, piece] { Q_EMIT stream->piece(piece); });
        }
        void finish(const Outcome& outcome) const { m_sink.finish(outcome); }

    private:
        friend EntryStream;
        Sink(EntryStream* stream, Reply<Outcome>::Sink sink)
            : m_stream(stream)
            , m_sink(std::move(sink))
        {
        }

        EntryStream* m_stream;
        Reply<Outcome>::Sink m_sink;
    };

    EntryStream() = default;
    Q_DISABLE_COPY_MOVE(EntryStream)

    [[nodiscard]] Sink sink() { return {this, m_reply.sink()}; }

Q_SIGNALS:
    void piece(const QString& text);
    void finished(const varno::EntryStream::Outcome& outcome);

private:
    Reply<Outcome> m_reply{[this](const Outcome& outcome) { Q_EMIT finished(outcome); }};
};

} // namespace varno
