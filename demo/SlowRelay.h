#pragma once

#include <QByteArray>
#include <QThread>

#include <atomic>
#include <chrono>

namespace varno {

/// A long line to a server of this machine: whatever comes is passed on `delay` later, both ways. A
/// connection takes its round trip, too: what the client sends first leaves that much later. Any
/// thread.
class SlowRelay {
public:
    /// `url` names the server by its port.
    SlowRelay(const QByteArray& url, std::chrono::milliseconds delay);
    ~SlowRelay();
    SlowRelay(const SlowRelay&) = delete;
    SlowRelay& operator=(const SlowRelay&) = delete;

    /// The given URL, by way of the relay.
    [[nodiscard]] const QByteArray& url() const { return m_url; }
    [[nodiscard]] int connectionCount() const { return m_connectionCount; }

private:
    QByteArray m_url;
    std::atomic<int> m_connectionCount = 0;
    QThread m_thread;
};

} // namespace varno
