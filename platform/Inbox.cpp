#include "platform/Inbox.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>

#include <mutex>
#include <utility>
#include <vector>

namespace varno {

struct Inbox::Address::Box {
    std::mutex mutex;
    Inbox* owner = nullptr;
    std::vector<Closure> closures;
};

Inbox::Inbox()
{
    m_address.m_box = std::make_shared<Address::Box>();
    m_address.m_box->owner = this;
}

Inbox::~Inbox()
{
    std::vector<Closure> dropped; // outside the lock: their end may send something
    const std::scoped_lock lock(m_address.m_box->mutex);
    m_address.m_box->owner = nullptr;
    dropped.swap(m_address.m_box->closures);
}

/// One event serves all that come in until it is there.
void Inbox::Address::send(Closure closure) const
{
    const std::scoped_lock lock(m_box->mutex);
    if (!m_box->owner)
        return;
    m_box->closures.push_back(std::move(closure));
    if (m_box->closures.size() == 1)
        QCoreApplication::postEvent(m_box->owner, new QEvent(QEvent::User));
}

void Inbox::customEvent(QEvent*)
{
    if (m_running) { // a closure runs an event loop of its own
        m_moreCame = true;
        return;
    }
    std::vector<Closure> closures;
    {
        const std::scoped_lock lock(m_address.m_box->mutex);
        closures.swap(m_address.m_box->closures);
    }
    m_running = true;
    const QPointer<Inbox> self(this);
    for (const Closure& closure : closures) {
        closure();
        if (!self)
            return;
    }
    m_running = false;
    if (std::exchange(m_moreCame, false))
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

} // namespace varno
