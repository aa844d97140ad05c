#include "core/TOCRequest.h"

#include <utility>

namespace varno {

TOCRequest::TOCRequest()
{
    m_sink.m_mailbox = std::make_shared<Mailbox<Outcome>>(this);
}

TOCRequest::~TOCRequest()
{
    m_sink.m_mailbox->close();
}

void TOCRequest::customEvent(QEvent*)
{
    const auto outcomes = m_sink.m_mailbox->take();
    if (!std::exchange(m_finished, true))
        Q_EMIT finished(outcomes.front());
}

} // namespace varno
