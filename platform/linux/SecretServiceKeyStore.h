#pragma once

#include "platform/KeyStore.h"

namespace varno {

/// Keys in the desktop's key ring, over the freedesktop Secret Service.
///
/// Each call opens the service anew: a key ring that was restarted is found again, and a call that
/// waits for the user holds up no other.
class SecretServiceKeyStore final : public KeyStore {
public:
    void replace(const KeyName& name, const QByteArray& secret, std::stop_token stop) override;
    void remove(const KeyName& name, std::stop_token stop) override;
    [[nodiscard]] std::optional<QByteArray> find(const KeyName& name,
                                                 std::stop_token stop) const override;
    [[nodiscard]] KeyGlance look(const KeyName& name, std::stop_token stop) const override;
};

} // namespace varno
