#pragma once

#include "platform/posix/CurlTransfer.h"

#include <condition_variable>
#include <mutex>
#include <string_view>
#include <vector>

namespace varno {

/// A transfer whose connection is made before there is a request for it. One thread connects and
/// holds it; another one releases it with a request, and runs it to its end.
class HeldTransfer final : public CurlTransfer {
public:
    HeldTransfer(const Setting& setting, const QByteArray& origin);

    /// Connects, and blocks until the request is on its way or will never be: `lifetime` is over,
    /// `stop` has asked for the end, or there is no connection. To be called once.
    void hold(std::chrono::milliseconds lifetime, const std::stop_token& stop);

    /// Sends `request` once the connection is up, if `hold` does not end before. When it returns
    /// false not a byte has been sent; when it returns true `run` is to be called. `target` is what
    /// stands in the request line; `stop` ends the wait.
    [[nodiscard]] bool release(const HttpRequest& request, const QByteArray& target,
                               const HeaderList& headers, HttpReceiver& receiver,
                               const std::stop_token& stop);

protected:
    bool mayGoOut(int localPort) override;

private:
    using Clock = std::chrono::steady_clock;
    struct Release {
        const HttpRequest& request;
        const QByteArray& target;
        const HeaderList& headers;
        HttpReceiver& receiver;
    };
    void take(const Release& release);
    static int onSocket(void* user, curl_socket_t socket, curlsocktype);
    static size_t onRead(char* data, size_t, size_t room, void* user);

    std::vector<curl_socket_t> m_sockets; ///< those that were tried
    std::string_view m_unsentBody;
    std::stop_token m_stop;
    Clock::time_point m_end;

    std::mutex m_mutex; ///< guards what follows
    std::condition_variable_any m_changed;
    const Release* m_release = nullptr;
    bool m_isReleased = false;
    bool m_isHeld = true; ///< by the thread that connects
};

} // namespace varno
