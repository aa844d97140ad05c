#pragma once

#include "core/Mailbox.h"
#include "platform/Result.h"

#include <QObject>
#include <QString>

#include <memory>
#include <variant>

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
    using Outcome = std::variant<Completed, Failure>;

    /// The producer's end. May outlive the stream, is freely copied and used from any thread; what
    /// is sent to a stream that is finished or gone is dropped.
    class Sink {
    public:
        void send(const QString& piece) const { m_mailbox->send(piece); }
        void finish(const Outcome& outcome) const { m_mailbox->send(outcome); }

    private:
        friend EntryStream;
        std::shared_ptr<Mailbox<std::variant<QString, Outcome>>> m_mailbox;
    };

    EntryStream();
    ~EntryStream() override;
    Q_DISABLE_COPY_MOVE(EntryStream)

    [[nodiscard]] Sink sink() const { return m_sink; }

Q_SIGNALS:
    void piece(const QString& text);
    void finished(const varno::EntryStream::Outcome& outcome);

protected:
    void customEvent(QEvent* event) override;

private:
    void deliver(const std::variant<QString, Outcome>& message);

    Sink m_sink;
    bool m_delivering = false; ///< stays so once it is finished
    bool m_moreCame = false;
    bool m_finished = false;
};

} // namespace varno
