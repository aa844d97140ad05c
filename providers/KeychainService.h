#pragma once

#include "platform/KeyStore.h"

namespace varno {

/// The user's two API keys, in the system's key store. Immutable; any thread. Every call blocks
/// until the store has answered.
class KeychainService {
public:
    /// The keys of this system's user.
    static const KeychainService& shared();

    explicit KeychainService(KeyStore& store);

    const QString service = QStringLiteral("com.kelbrin.varno");
    const QString anthropicAccount = QStringLiteral("anthropic-api-key");
    const QString geminiAccount = QStringLiteral("gemini-api-key");

    /// Replaces the account's key. Between the old one and the new a `load` may find none.
    void save(const QString& key, const QString& account) const;

    /// The key as it was saved, or nothing: also when the store refuses, and for bytes that are no
    /// UTF-8. May ask the user to unlock the store and wait for the answer, or for `stop`.
    [[nodiscard]] std::optional<QString> load(const QString& account,
                                              std::stop_token stop = {}) const;

    void remove(const QString& account) const; // `delete` is taken in C++

    /// Whether there is a key, for screens: never unlocks and never asks the user.
    [[nodiscard]] KeyPresence presence(const QString& account) const;

private:
    KeyStore& m_store;
};

} // namespace varno
