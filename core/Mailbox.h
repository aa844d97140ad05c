#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QObject>

#include <mutex>
#include <utility>
#include <vector>

namespace varno {

/// Carries messages from any thread to their owner's. The owner gets an event of type QEvent::User
/// in its event loop, one for all messages that have come in meanwhile, and takes them then.
template <typename Message>
class Mailbox {
public:
    explicit Mailbox(QObject* owner)
        : m_owner(owner)
    {
    }

    /// For the owner's destructor: drops what is here and what still comes.
    void close()
    {
        const std::scoped_lock lock(m_mutex);
        m_owner = nullptr;
        m_messages.clear();
    }

    void send(Message message)
    {
        const std::scoped_lock lock(m_mutex);
        if (!m_owner)
            return;
        m_messages.push_back(std::move(message));
        if (m_messages.size() == 1)
            QCoreApplication::postEvent(m_owner, new QEvent(QEvent::User));
    }

    [[nodiscard]] std::vector<Message> take()
    {
        const std::scoped_lock lock(m_mutex);
        return std::exchange(m_messages, {});
    }

private:
    std::mutex m_mutex;
    QObject* m_owner;
    std::vector<Message> m_messages;
};

} // namespace varno
