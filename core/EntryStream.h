#pragma once

#include "platform/Result.h"

#include <QObject>

#include <memory>
#include <optional>
#include <variant>

namespace varno {

/// The text of an entry as it arrives. Whoever owns the stream listens; destroying it is the
/// cancellation, silent.
///
/// Signals come on the thread that made the stream, from its event loop, never from inside the call
/// that started it: any number of `piece`, then `finished` at most once, and nothing after
/// destruction. A slot may destroy the stream.
class EntryStream final : public QObject {
    Q_OBJECT

public:
    struct Completed {
        bool operator==(const Completed&) const = default;
    };
    using Outcome = std::variant<Completed, Failure>;

    /// The producer's end. May outlive the stream, is freely copied and used from any thread; what
    /// is sent to a stream that is finished or gone is dropped.
    class Sink {
    public:
        void send(const QString& piece) const;
        void finish(const Outcome& outcome) const;

    private:
        friend EntryStream;
        struct Mailbox;
        explicit Sink(std::shared_ptr<Mailbox> mailbox);

        std::shared_ptr<Mailbox> m_mailbox;
    };

    EntryStream();
    ~EntryStream() override;

    [[nodiscard]] Sink sink() const { return m_sink; }

signals:
    void piece(const QString& text);
    void finished(const varno::EntryStream::Outcome& outcome);

private:
    void deliver();

    Sink m_sink;
};

} // namespace varno
