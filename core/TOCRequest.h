#pragma once

#include "core/Mailbox.h"
#include "platform/Result.h"

#include <QObject>
#include <QStringList>

#include <memory>

namespace varno {

/// A table of contents that is being asked for. The rules are those of EntryStream: destroying the
/// request is its cancellation, `finished` comes at most once, from the event loop.
class TOCRequest final : public QObject {
    Q_OBJECT

public:
    /// The names of the sections.
    using Outcome = Result<QStringList>;

    /// The producer's end; may outlive the request. Any thread.
    class Sink {
    public:
        void finish(const Outcome& outcome) const { m_mailbox->send(outcome); }

    private:
        friend TOCRequest;
        std::shared_ptr<Mailbox<Outcome>> m_mailbox;
    };

    TOCRequest();
    ~TOCRequest() override;
    Q_DISABLE_COPY_MOVE(TOCRequest)

    [[nodiscard]] Sink sink() const { return m_sink; }

Q_SIGNALS:
    void finished(const varno::TOCRequest::Outcome& outcome);

protected:
    void customEvent(QEvent* event) override;

private:
    Sink m_sink;
    bool m_finished = false;
};

} // namespace varno
