#include "providers/KeyRequest.h"

#include <utility>

namespace varno {

KeyRequest::KeyRequest(Question question)
    : m_question(std::move(question))
{
}

KeyRequest::Answer KeyRequest::wait(const std::stop_token& stop)
{
    std::unique_lock lock(m_mutex);
    if (!std::exchange(m_started, true) &&
        !m_background.start([this](const std::stop_token& end) { put(end); })) {
        lock.unlock();
        put(stop);
        lock.lock();
    }
    return m_answered.wait(lock, stop, [this] { return m_answer.has_value(); }) ? *m_answer
                                                                                : Answer();
}

bool KeyRequest::isAnswered() const
{
    const std::scoped_lock lock(m_mutex);
    return m_answer.has_value();
}

void KeyRequest::put(const std::stop_token& stop)
{
    Answer answer = m_question(stop);
    const std::scoped_lock lock(m_mutex);
    m_answer = std::move(answer);
    m_answered.notify_all();
}

} // namespace varno
