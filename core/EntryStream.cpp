#include "core/EntryStream.h"

#include <QPointer>

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
    const QPointer<EntryStream> self(this);
    for (const auto& message : m_sink.m_mailbox->take()) {
        if (!self || m_finished)
            return;
        if (const auto* text = std::get_if<QString>(&message)) {
            emit piece(*text);
        } else {
            m_finished = true;
            emit finished(std::get<Outcome>(message));
        }
    }
}

} // namespace varno
