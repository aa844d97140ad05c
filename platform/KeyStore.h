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

/// What can be seen of an item without asking the user.
struct KeyGlance {
    enum class State { unreachable, absent, locked, open };

    State state = State::unreachable;
    QByteArray secret = {}; ///< of an item that is open
};

/// The system's store of secrets. Any thread; every call blocks until the store has answered, or
/// `stop` ends it as a failure.
class KeyStore {
public:
    virtual ~KeyStore() = default;

    // These three ask the user to unlock a locked store, so they may take as long as the user does.
    // One call asks once; a refusal ends it.

    /// Removes every item of that name, then adds one that holds `secret`, bytes as they are.
    /// Failures are silent.
    virtual void replace(const KeyName& name, const QByteArray& secret, std::stop_token stop) = 0;

    /// Removes every item of that name. Failures, and a name without an item, are silent.
    virtual void remove(const KeyName& name, std::stop_token stop) = 0;

    /// The secret, or nothing when there is none, when the store cannot be reached or when the user
    /// refuses.
    [[nodiscard]] virtual std::optional<QByteArray> find(const KeyName& name,
                                                         std::stop_token stop) const = 0;

    /// Never unlocks and never asks the user.
    [[nodiscard]] virtual KeyGlance look(const KeyName& name, std::stop_token stop) const = 0;
};

} // namespace varno
