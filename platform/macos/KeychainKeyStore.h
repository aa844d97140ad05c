#pragma once

#include "platform/KeyStore.h"

namespace varno {

/// Keys in the user's keychain: generic passwords, readable from the first unlocking of the machine
/// on. The keychain asks its user itself and takes no question back, so one that is stopped goes on
/// for nobody.
class KeychainKeyStore final : public KeyStore {
public:
    void replace(const KeyName& name, const QByteArray& secret, std::stop_token stop) override;
    void remove(const KeyName& name, std::stop_token stop) override;
    [[nodiscard]] std::optional<QByteArray> find(const KeyName& name,
                                                 std::stop_token stop) const override;
    [[nodiscard]] KeyGlance look(const KeyName& name, std::stop_token stop) const override;
};

} // namespace varno
