#pragma once

#include "platform/Inbox.h"

#include <functional>
#include <utility>

namespace varno {

/// What is delivered to a class like EntryStream from another thread, up to its one outcome.
/// Nothing is delivered from within the call that sends it, after the outcome, or after the end of
/// the reply.
template <typename Outcome>
class Reply {
public:
    /// `finished` may destroy the reply.
    explicit Reply(std::function<void(const Outcome&)> finished)
        : m_finished(std::move(finished))
    {
    }
    Reply(const Reply&) = delete;
    Reply& operator=(const Reply&) = delete;

    /// The sender's end: copied freely, for any thread, and may outlive the reply.
    class Sink {
    public:
        void send(Inbox::Closure delivery) const
        {
            m_address.send([reply = m_reply, delivery = std::move(delivery)] {
                if (reply->m_isOpen)
                    delivery();
            });
        }
        void finish(const Outcome& outcome) const
        {
            m_address.send([reply = m_reply, outcome] {
                if (std::exchange(reply->m_isOpen, false))
                    reply->m_finished(outcome);
            });
        }

    private:
        friend Reply;
        Sink(Inbox::Address address, Reply* reply)
            : m_address(std::move(address))
            , m_reply(reply)
        {
        }

        Inbox::Address m_address;
        Reply* m_reply; ///< there while the inbox delivers
    };

    [[nodiscard]] Sink sink() { return {m_inbox.address(), this}; }

private:
    std::function<void(const Outcome&)> m_finished;
    bool m_isOpen = true;
    Inbox m_inbox;
};

} // namespace varno
