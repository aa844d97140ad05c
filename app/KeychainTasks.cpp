#include "app/KeychainTasks.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace varno {

using namespace std::chrono_literals;

struct KeychainTasks::Changes {
    std::mutex mutex;
    std::condition_variable ended;
    int count = 0;
};

KeychainTasks::KeychainTasks(const KeychainService& keychain)
    : m_keychain(keychain)
    , m_answers(std::make_shared<Mailbox<Answer>>(this))
    , m_changes(std::make_shared<Changes>())
{
}

KeychainTasks::~KeychainTasks()
{
    m_answers->close();
    std::unique_lock lock(m_changes->mutex);
    m_changes->ended.wait_for(lock, 2s, [this] { return m_changes->count == 0; });
}

/// `work` is done on a thread that nobody waits for, `tell` is given its result on this one.
template <typename Work, typename Tell>
void KeychainTasks::start(QObject* context, Work work, Tell tell)
{
    std::thread([answers = m_answers, asked = QPointer<QObject>(context), work = std::move(work),
                 tell = std::move(tell)] {
        answers->send({.context = asked, .tell = [tell, result = work()] { tell(result); }});
    }).detach();
}

template <typename Work>
void KeychainTasks::change(QObject* context, Work work, OnPresence onPresence)
{
    {
        const std::scoped_lock lock(m_changes->mutex);
        ++m_changes->count;
    }
    const auto changeAndEnd = [changes = m_changes, work = std::move(work)] {
        const KeyPresence presence = work();
        const std::scoped_lock lock(changes->mutex);
        --changes->count;
        changes->ended.notify_all();
        return presence;
    };
    start(context, changeAndEnd, std::move(onPresence));
}

void KeychainTasks::askPresence(const QString& account, QObject* context, OnPresence onPresence)
{
    start(
        context, [&keychain = m_keychain, account] { return keychain.presence(account); },
        std::move(onPresence));
}

void KeychainTasks::load(const QString& account, std::stop_token stop, QObject* context,
                         OnKey onKey)
{
    start(
        context,
        [&keychain = m_keychain, account, stop = std::move(stop)] {
            return keychain.load(account, stop);
        },
        std::move(onKey));
}

void KeychainTasks::save(const QString& key, const QString& account, QObject* context,
                         OnPresence onPresence)
{
    change(
        context,
        [&keychain = m_keychain, key, account] {
            keychain.save(key, account);
            return keychain.presence(account);
        },
        std::move(onPresence));
}

void KeychainTasks::remove(const QString& account, QObject* context, OnPresence onPresence)
{
    change(
        context,
        [&keychain = m_keychain, account] {
            keychain.remove(account);
            return keychain.presence(account);
        },
        std::move(onPresence));
}

bool KeychainTasks::event(QEvent* event)
{
    if (event->type() != QEvent::User)
        return QObject::event(event);
    const QPointer<KeychainTasks> self(this);
    for (const Answer& answer : m_answers->take()) {
        if (answer.context)
            answer.tell();
        if (!self)
            break;
    }
    return true;
}

} // namespace varno
