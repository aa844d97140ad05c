#include "app/KeychainTasks.h"

#include "platform/EitherStop.h"

#include <QPointer>

#include <utility>

namespace varno {

using namespace std::chrono_literals;

KeychainTasks::KeychainTasks(const KeychainService& keychain)
    : m_keychain(keychain)
{
}

KeychainTasks::~KeychainTasks()
{
    end();
}

void KeychainTasks::end()
{
    m_changes.waitForDone(2s);
    m_changes.stop();
    m_questions.stop();
}

void KeychainTasks::askPresence(const QString& account, QObject* context, OnPresence onPresence)
{
    const auto tell = teller<KeyPresence>(context, std::move(onPresence));
    const auto ask = [this, account, tell](const std::stop_token& stop) {
        tell(m_keychain.presence(account, stop));
    };
    if (!m_questions.start(ask))
        tell(KeyPresence::unreachable);
}

void KeychainTasks::load(const QString& account, std::stop_token stop, QObject* context,
                         OnKey onKey)
{
    const auto tell = teller<std::optional<QString>>(context, std::move(onKey));
    const auto ask = [this, account, stop = std::move(stop), tell](const std::stop_token& end) {
        const EitherStop either(stop, end);
        tell(m_keychain.load(account, either.token()));
    };
    if (!m_questions.start(ask))
        tell(std::nullopt);
}

void KeychainTasks::save(const QString& key, const QString& account, QObject* context,
                         OnPresence onPresence)
{
    const auto tell = teller<KeyPresence>(context, std::move(onPresence));
    m_changes.add([this, key, account, tell](const std::stop_token& stop) {
        m_keychain.save(key, account, stop);
        tell(m_keychain.presence(account, stop));
    });
}

void KeychainTasks::remove(const QString& account, QObject* context, OnPresence onPresence)
{
    const auto tell = teller<KeyPresence>(context, std::move(onPresence));
    m_changes.add([this, account, tell](const std::stop_token& stop) {
        m_keychain.remove(account, stop);
        tell(m_keychain.presence(account, stop));
    });
}

template <typename Answer>
std::function<void(const Answer&)> KeychainTasks::teller(QObject* context,
                                                         std::function<void(Answer)> onAnswer) const
{
    return [address = m_inbox.address(), asked = QPointer<QObject>(context),
            onAnswer = std::move(onAnswer)](const Answer& answer) {
        address.send([asked, onAnswer, answer] {
            if (asked)
                onAnswer(answer);
        });
    };
}

} // namespace varno
