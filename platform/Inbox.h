#pragma once

#include <QObject>

#include <functional>
#include <memory>

namespace varno {

/// Runs closures that come from any thread on the thread that made it: from its event loop, in the
/// order in which they were sent. What has not run when the inbox ends is dropped, so a closure may
/// use whatever owns the inbox. It may destroy that owner, too; and while it runs, in an event loop
/// of its own as well, no other one begins.
class Inbox final : public QObject {
public:
    using Closure = std::function<void()>;

    /// Where to send to: copied freely, for any thread, and may outlive the inbox.
    class Address {
    public:
        void send(Closure closure) const;

    private:
        friend Inbox;
        struct Box;
        std::shared_ptr<Box> m_box;
    };

    Inbox();
    ~Inbox() override;
    Q_DISABLE_COPY_MOVE(Inbox)

    [[nodiscard]] const Address& address() const { return m_address; }

protected:
    void customEvent(QEvent* event) override;

private:
    Address m_address;
    bool m_running = false;
    bool m_moreCame = false;
};

} // namespace varno
