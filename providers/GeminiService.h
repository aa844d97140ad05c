#pragma once

#include "providers/ServiceClient.h"

namespace varno {

/// The client of Google's Gemini generate-content API.
class GeminiService final : public ServiceClient {
public:
    static const GeminiService& shared();

    /// `baseURL` is the URL of the models; `timeout` the longest silence on the wire.
    GeminiService(const QByteArray& baseURL, HttpSession& http, const KeychainService& keychain,
                  std::chrono::seconds timeout = std::chrono::seconds(60));
};

} // namespace varno
