#pragma once

#include "platform/HttpSession.h"

#include <functional>

namespace varno {

/// HTTP whose response the test gives, on the thread of the request.
class HttpByHand final : public HttpSession {
public:
    std::function<std::optional<Failure>(const HttpRequest&, HttpReceiver&)> respond;

    [[nodiscard]] std::optional<Failure> perform(const HttpRequest& request, HttpReceiver& receiver,
                                                 std::stop_token) override
    {
        return respond(request, receiver);
    }
};

} // namespace varno
