#pragma once

#include "platform/posix/HeldTransfer.h"

#include <QString>

#include <array>
#include <memory>
#include <mutex>

namespace varno {

/// HTTP by libcurl. Transfers share what DNS and TLS have learnt, never a connection: libcurl sends
/// a request again when a reused connection turns out to be dead, and the user would pay twice. A
/// connection made ahead is that of the one transfer which it was made for.
class CurlHttpSession final : public HttpSession {
public:
    /// `authorities` names a file of certificates to trust instead of the system's.
    explicit CurlHttpSession(const QString& authorities = {});
    ~CurlHttpSession() override;
    Q_DISABLE_COPY_MOVE(CurlHttpSession)

    [[nodiscard]] std::optional<Failure> perform(const HttpRequest& request, HttpReceiver& receiver,
                                                 std::stop_token stop) override;
    void connectAhead(const QByteArray& url, std::chrono::milliseconds lifetime,
                      const std::stop_token& stop) override;

private:
    /// A transfer that waits for a request to one host.
    struct Ahead {
        QByteArray origin;
        std::shared_ptr<HeldTransfer> transfer;
    };

    /// Null when there is none for that host.
    std::shared_ptr<HeldTransfer> heldTransfer(const QByteArray& origin);

    CurlTransfer::Setting m_setting;
    std::array<std::mutex, CURL_LOCK_DATA_LAST> m_locks;
    std::mutex m_aheadMutex;
    Ahead m_ahead;
};

} // namespace varno
