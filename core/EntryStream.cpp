#include "core/EntryStream.h"

#include <QPointer>

#include <utility>

namespace varno {

EntryStream::EntryStream()
{
    using Messages = Mailbox<std::variant<QString, Outcome>>;
    m_sink.m_mailbox = std::make_shared<Messages>(this);
}

EntryStream::~EntryStream()
{
    m_sink.m_mailbox->close();
}

void EntryStream::customEvent(QEvent*)
{
    if (m_delivering) { // a slot runs an event loop of its own
        m_moreCame = true;
        return;
    }
    m_delivering = true;
    const QPointer<EntryStream> self(this);
    for (const auto& message : m_sink.m_mailbox->take()) {
        deliver(message);
        if (!self || m_finished)
            return;
    }
    m_delivering = false;
    if (std::exchange(m_moreCame, false))
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

void EntryStream::deliver(const std::variant<QString, Outcome>& message)
{
    if (const auto* text = std::get_if<QString>(&message)) {
        Q_EMIT piece(*text);
    } else {
        m_finished = true;
        Q_EMIT finished(std::get<Outcome>(message));
    }
}

} // namespace varno
