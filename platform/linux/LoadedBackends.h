#pragma once

#include "platform/HttpSession.h"
#include "platform/KeyStore.h"

#include <memory>

namespace varno {

/// The backend of the module varno-http.so, which is loaded with the first request: its libraries
/// are many, and a start need not wait for them. Every request fails if the module is not there.
class LoadedHttpSession final : public HttpSession {
public:
    [[nodiscard]] std::optional<Failure> perform(const HttpRequest& request, HttpReceiver& receiver,
                                                 std::stop_token stop) override;
};

/// The same for varno-key-ring.so. Without the module there is no store.
class LoadedKeyStore final : public KeyStore {
public:
    void replace(const KeyName& name, const QByteArray& secret) override;
    void remove(const KeyName& name) override;
    [[nodiscard]] std::optional<QByteArray> find(const KeyName& name,
                                                 std::stop_token stop) const override;
    [[nodiscard]] KeyGlance look(const KeyName& name) const override;
};

} // namespace varno
