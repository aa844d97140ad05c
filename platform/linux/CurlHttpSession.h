#pragma once

#include "platform/linux/CurlTransfer.h"

#include <QString>

#include <array>
#include <mutex>

namespace varno {

/// HTTP by libcurl. Transfers share what DNS and TLS have learnt, never a connection: libcurl sends
/// a request again when a reused connection turns out to be dead, and the user would pay twice.
class CurlHttpSession final : public HttpSession {
public:
    /// `authorities` names a file of certificates to trust instead of the system's.
    explicit CurlHttpSession(const QString& authorities = {});
    ~CurlHttpSession() override;
    Q_DISABLE_COPY_MOVE(CurlHttpSession)

    [[nodiscard]] std::optional<Failure> perform(const HttpRequest& request, HttpReceiver& receiver,
                                                 std::stop_token stop) override;

private:
    CurlTransfer::Setting m_setting;
    std::array<std::mutex, CURL_LOCK_DATA_LAST> m_locks;
};

} // namespace varno
