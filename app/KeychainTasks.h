#pragma once

#include "core/Mailbox.h"
#include "providers/KeychainService.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

namespace varno {

/// The user's keys, for screens: asks the key store in the background, where it may take as long as
/// the user takes to unlock it, and brings the answer to the main thread. Main thread only.
///
/// An answer whose `context` is gone by then, or that comes after this object, is dropped. Where
/// there is no thread to be had the answer is that the store cannot be reached.
class KeychainTasks final : public QObject {
    Q_OBJECT

public:
    using OnPresence = std::function<void(KeyPresence)>;
    using OnKey = std::function<void(const std::optional<QString>&)>;

    /// `keychain` lives as long as the process: nobody waits for a store that does not answer.
    explicit KeychainTasks(const KeychainService& keychain);
    /// Lets what is being changed come to its end, for two seconds at most.
    ~KeychainTasks() override;
    Q_DISABLE_COPY_MOVE(KeychainTasks)

    [[nodiscard]] const KeychainService& keychain() const { return m_keychain; }

    /// Never unlocks the store and never asks the user.
    void askPresence(const QString& account, QObject* context, OnPresence onPresence);

    /// May ask the user; `stop` ends that, and then nothing is found.
    void load(const QString& account, std::stop_token stop, QObject* context, OnKey onKey);

    // Both answer with what is there afterwards. Two changes of one account at a time may take
    // place in any order.
    void save(const QString& key, const QString& account, QObject* context, OnPresence onPresence);
    void remove(const QString& account, QObject* context, OnPresence onPresence);

protected:
    bool event(QEvent* event) override;

private:
    struct Answer {
        QPointer<QObject> context;
        std::function<void()> tell;
    };
    struct Changes;
    class Change;

    template <typename Work, typename Tell, typename Result>
    void start(QObject* context, Work work, Tell tell, const Result& otherwise);
    template <typename Work>
    void change(QObject* context, Work work, OnPresence onPresence);

    const KeychainService& m_keychain;
    std::shared_ptr<Mailbox<Answer>> m_answers;
    std::shared_ptr<Changes> m_changes; ///< those under way
};

} // namespace varno
