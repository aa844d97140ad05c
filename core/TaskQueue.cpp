#include "core/TaskQueue.h"

#include "platform/Threads.h"

#include <utility>

namespace varno {

TaskQueue::~TaskQueue()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_closed = true;
    }
    m_changed.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

void TaskQueue::add(std::function<void()> task)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_tasks.push_back(std::move(task));
        if (!m_thread.joinable())
            m_thread = std::thread([this] { run(); });
    }
    m_changed.notify_all();
}

void TaskQueue::waitForDone()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_tasks.empty(); });
}

void TaskQueue::run()
{
    lowerThreadPriority();
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_closed || !m_tasks.empty(); });
        if (m_tasks.empty())
            return;
        const std::function<void()>& task = m_tasks.front(); // stays put while others are added
        lock.unlock();
        task();
        lock.lock();
        m_tasks.pop_front();
        m_changed.notify_all();
    }
}

} // namespace varno
