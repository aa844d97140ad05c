#include "app/KeychainTasks.h"

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace varno {

using namespace std::chrono_literals;

struct KeychainTasks::Changes {
    void count(int difference)
    {
        const std::scoped_lock lock(mutex);
        underWay += difference;
        changed.notify_all();
    }

    std::mutex mutex;
    std::condition_variable changed;
    int underWay = 0;
};

/// One of them, as long as it is there.
class KeychainTasks::Change {
public:
    explicit Change(std::shared_ptr<Changes> all)
        : m_all(std::move(all))
    {
        m_all->count(+1);
    }
    ~Change() { m_all->count(-1); }
    Q_DISABLE_COPY_MOVE(Change)

private:
    std::shared_ptr<Changes> m_all;
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
    m_changes->changed.wait_for(lock, 2s, [this] { return m_changes->underWay == 0; });
}

/// `work` is done on a thread that nobody waits for, `tell` is given its result on this one, or
/// `otherwise` where there is no thread to be had.
template <typename Work, typename Tell, typename Result>
void KeychainTasks::start(QObject* context, Work work, Tell tell, const Result& otherwise)
{
    const auto answer = [answers = m_answers, asked = QPointer<QObject>(context),
                         tell = std::move(tell)](const Result& result) {
        answers->send({.context = asked, .tell = [tell, result] { tell(result); }});
    };
    try {
        std::thread([answer, work = std::move(work)] { answer(work()); }).detach();
    } catch (const std::system_error&) {
        answer(otherwise);
    }
}

template <typename Work>
void KeychainTasks::change(QObject* context, Work work, OnPresence onPresence)
{
    start(
        context,
        [work = std::move(work), change = std::make_shared<Change>(m_changes)] { return work(); },
        std::move(onPresence), KeyPresence::unreachable);
}

void KeychainTasks::askPresence(const QString& account, QObject* context, OnPresence onPresence)
{
    start(
        context, [&keychain = m_keychain, account] { return keychain.presence(account); },
        std::move(onPresence), KeyPresence::unreachable);
}

void KeychainTasks::load(const QString& account, std::stop_token stop, QObject* context,
                         OnKey onKey)
{
    start(
        context,
        [&keychain = m_keychain, account, stop = std::move(stop)] {
            return keychain.load(account, stop);
        },
        std::move(onKey), std::optional<QString>());
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
