#pragma once

#include "providers/ServiceClient.h"

namespace varno {

/// The client of Anthropic's Messages API.
class ClaudeService final : public ServiceClient {
public:
    static const ClaudeService& shared();

    /// `endpoint` is the URL of the messages; `timeout` the longest silence on the wire.
    ClaudeService(const QByteArray& endpoint, HttpSession& http, const KeychainService& keychain,
                  std::chrono::seconds timeout = std::chrono::seconds(60));
};

} // namespace varno
