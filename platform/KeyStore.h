#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <stop_token>

namespace varno {

/// Names one secret: at most one item is kept for each pair.
struct KeyName {
    QString service;
    QString account;
};

enum class KeyPresence { present, absent, unreachable };

/// The system's store of secrets. Any thread; every call blocks until the store has answered.
class KeyStore {
public:
    virtual ~KeyStore() = default;

    /// Adds an item holding `secret`, bytes as they are. Failures are silent.
    virtual void add(const KeyName& name, const QByteArray& secret) = 0;

    /// Removes every item of that name. Failures, and a name without an item, are silent.
    virtual void remove(const KeyName& name) = 0;

    /// The secret, or nothing when there is none, when the store cannot be reached or when the user
    /// refuses. A locked store asks the user first, so this may take as long as the user does;
    /// `stop` ends the wait.
    [[nodiscard]] virtual std::optional<QByteArray> find(const KeyName& name,
                                                         std::stop_token stop) const = 0;

    /// Whether there is an item, locked or not. Never unlocks and never asks the user.
    [[nodiscard]] virtual KeyPresence presence(const KeyName& name) const = 0;
};

} // namespace varno
