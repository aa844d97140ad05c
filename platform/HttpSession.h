#pragma once

#include "platform/Result.h"

#include <QByteArray>

#include <chrono>
#include <optional>
#include <stop_token>
#include <string_view>
#include <utility>
#include <vector>

namespace varno {

/// One POST.
struct HttpRequest {
    QByteArray url;
    std::vector<std::pair<QByteArray, QByteArray>> headers; ///< sent in this order
    QByteArray body;
    std::chrono::seconds timeout{60};      ///< longest silence on the wire
    bool takesConnectionMadeAhead = false; ///< to its host, if there is one
};

/// Takes a response as it arrives, while `HttpSession::perform` blocks and on one thread at a time.
/// Returning false ends the transfer there, without a failure.
class HttpReceiver {
public:
    virtual ~HttpReceiver() = default;

    /// Called once, when the head of the response is complete.
    virtual bool onStatus(int statusCode) = 0;
    virtual bool onBytes(std::string_view bytes) = 0;
};

/// HTTP with TLS. Each request goes out once, on a connection of its own, to the host it names:
/// nothing is sent again and no redirect is followed. Certificates are always verified.
class HttpSession {
public:
    virtual ~HttpSession() = default;

    /// Sends `request` and feeds the response to `receiver`; returns at its end, with the failure
    /// if the transfer did not end well. Blocks; any thread, many at once. `stop` ends it at once.
    [[nodiscard]] virtual std::optional<Failure>
    perform(const HttpRequest& request, HttpReceiver& receiver, std::stop_token stop) = 0;

    /// Connects to the host of `url` and sends nothing, so that the next request there which takes
    /// the connection need not wait for one. Blocks until that is under way, `stop` asks for the
    /// end, `lifetime` is over or there is no connection to be had, which nobody is told. Of
    /// several connections the one begun last can be taken. Any thread; a hint, which may do
    /// nothing.
    virtual void connectAhead(const QByteArray& /*url*/, std::chrono::milliseconds /*lifetime*/,
                              const std::stop_token& /*stop*/)
    {
    }
};

} // namespace varno
