#pragma once

#include "platform/KeyStore.h"
#include "providers/KeyRequest.h"

#include <map>
#include <memory>
#include <mutex>

namespace varno {

using namespace Qt::StringLiterals;

enum class KeyPresence { present, absent, unreachable };

/// The user's two API keys, in the system's key store. Any thread. Every call but `request` blocks
/// until the store has answered; `stop` ends it before.
class KeychainService {
public:
    /// The keys of this system's user.
    static const KeychainService& shared();

    explicit KeychainService(KeyStore& store);

    const QString service = u"com.kelbrin.varno"_s;
    const QString anthropicAccount = u"anthropic-api-key"_s;
    const QString geminiAccount = u"gemini-api-key"_s;

    /// Replaces the account's key. Between the old one and the new a `load` may find none.
    void save(const QString& key, const QString& account, const std::stop_token& stop = {}) const;

    /// The key as it was saved, or nothing: also when the store refuses, and for bytes that are no
    /// UTF-8. May ask the user to unlock the store and wait for the answer.
    [[nodiscard]] std::optional<QString> load(const QString& account,
                                              const std::stop_token& stop = {}) const;

    /// The same in two steps, for those who act together: whoever requests a key before an earlier
    /// request is answered gets that one, so that the user is asked once. Nothing is kept for
    /// longer than somebody holds it.
    using Request = std::shared_ptr<KeyRequest>;
    [[nodiscard]] Request request(const QString& account) const;
    [[nodiscard]] static std::optional<QString> load(Request request, const std::stop_token& stop);

    void remove(const QString& account,
                const std::stop_token& stop = {}) const; // `delete` is taken in C++

    /// Whether there is a key that `load` would find, and that is not empty, for screens: never
    /// unlocks and never asks the user. One that is locked away counts.
    [[nodiscard]] KeyPresence presence(const QString& account,
                                       const std::stop_token& stop = {}) const;

private:
    void changed(const QString& account) const;

    KeyStore& m_store;
    mutable std::mutex m_mutex;
    mutable std::map<QString, std::weak_ptr<KeyRequest>> m_requests; ///< the latest, by account
};

} // namespace varno
