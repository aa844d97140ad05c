#pragma once

#include "platform/Background.h"
#include "platform/Inbox.h"
#include "providers/KeychainService.h"

#include <QObject>

#include <functional>
#include <optional>
#include <stop_token>

namespace varno {

/// The user's keys, for screens: asks the key store in the background, where it may take as long as
/// the user takes to unlock it, and brings the answer to the main thread. Main thread only.
///
/// An answer whose `context` is gone by then, or that comes after this object, is dropped. Where
/// there is no thread to be had, questions are answered as if the store could not be reached, and
/// changes block.
class KeychainTasks {
public:
    using OnPresence = std::function<void(KeyPresence)>;
    using OnKey = std::function<void(std::optional<QString>)>;

    explicit KeychainTasks(const KeychainService& keychain);
    ~KeychainTasks();
    Q_DISABLE_COPY_MOVE(KeychainTasks)

    [[nodiscard]] const KeychainService& keychain() const { return m_keychain; }

    /// Never unlocks the store and never asks the user.
    void askPresence(const QString& account, QObject* context, OnPresence onPresence);

    /// May ask the user; `stop` ends that, and then nothing is found.
    void load(const QString& account, std::stop_token stop, QObject* context, OnKey onKey);

    // Both answer with what is there afterwards, and take place one after the other.
    void save(const QString& key, const QString& account, QObject* context, OnPresence onPresence);
    void remove(const QString& account, QObject* context, OnPresence onPresence);

    /// Lets what is being changed come to its end, for two seconds at most, and ends the rest.
    void end();

private:
    template <typename Answer>
    [[nodiscard]] std::function<void(const Answer&)>
    teller(QObject* context, std::function<void(Answer)> onAnswer) const;

    const KeychainService& m_keychain;
    Inbox m_inbox;
    Lane m_changes;
    Background m_questions;
};

} // namespace varno
