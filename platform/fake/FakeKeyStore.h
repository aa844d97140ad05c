#pragma once

#include "platform/KeyStore.h"

#include <map>
#include <mutex>

namespace varno {

/// Keys in memory.
class FakeKeyStore final : public KeyStore {
public:
    void replace(const KeyName& name, const QByteArray& secret, std::stop_token) override
    {
        const std::scoped_lock lock(m_mutex);
        m_secrets[name.service + u'/' + name.account] = secret;
    }

    void remove(const KeyName& name, std::stop_token) override
    {
        const std::scoped_lock lock(m_mutex);
        m_secrets.erase(name.service + u'/' + name.account);
    }

    [[nodiscard]] std::optional<QByteArray> find(const KeyName& name,
                                                 std::stop_token) const override
    {
        const std::scoped_lock lock(m_mutex);
        const auto found = m_secrets.find(name.service + u'/' + name.account);
        return found == m_secrets.end() ? std::nullopt : std::optional(found->second);
    }

    [[nodiscard]] KeyGlance look(const KeyName& name, std::stop_token) const override
    {
        const auto secret = find(name, {});
        return secret ? KeyGlance{KeyGlance::State::open, *secret}
                      : KeyGlance{KeyGlance::State::absent};
    }

private:
    mutable std::mutex m_mutex;
    std::map<QString, QByteArray> m_secrets;
};

} // namespace varno
