#include "core/EntryStream.h"

#include <QPointer>
#include <QStringList>

#include <mutex>
#include <utility>

namespace varno {

struct EntryStream::Sink::Mailbox {
    std::mutex mutex;
    EntryStream* stream = nullptr; ///< null once the stream is gone
    QStringList pieces;
    std::optional<Outcome> outcome;
    bool finished = false;
    bool deliveryPosted = false;

    /// Changes the mailbox by `change` and sees to it that the stream empties it soon.
    template <typename Change>
    void update(Change change)
    {
        const std::scoped_lock lock(mutex);
        if (!stream || finished)
            return;
        change();
        if (!std::exchange(deliveryPosted, true))
            QMetaObject::invokeMethod(stream, &EntryStream::deliver, Qt::QueuedConnection);
    }
};

EntryStream::Sink::Sink(std::shared_ptr<Mailbox> mailbox)
    : m_mailbox(std::move(mailbox))
{
}

void EntryStream::Sink::send(const QString& piece) const
{
    m_mailbox->update([&] { m_mailbox->pieces.append(piece); });
}

void EntryStream::Sink::finish(const Outcome& outcome) const
{
    m_mailbox->update([&] {
        m_mailbox->outcome = outcome;
        m_mailbox->finished = true;
    });
}

EntryStream::EntryStream()
    : m_sink(std::make_shared<Sink::Mailbox>())
{
    m_sink.m_mailbox->stream = this;
}

EntryStream::~EntryStream()
{
    const std::scoped_lock lock(m_sink.m_mailbox->mutex);
    m_sink.m_mailbox->stream = nullptr;
}

void EntryStream::deliver()
{
    QStringList pieces;
    std::optional<Outcome> outcome;
    {
        Sink::Mailbox& mailbox = *m_sink.m_mailbox;
        const std::scoped_lock lock(mailbox.mutex);
        mailbox.deliveryPosted = false;
        pieces = std::exchange(mailbox.pieces, {});
        outcome = std::exchange(mailbox.outcome, std::nullopt);
    }
    const QPointer<EntryStream> self(this);
    for (const QString& text : std::as_const(pieces)) {
        emit piece(text);
        if (!self)
            return;
    }
    if (outcome)
        emit finished(*outcome);
}

} // namespace varno
