#include "core/TaskQueue.h"

#include "platform/Threads.h"

#include <system_error>
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
    std::unique_lock lock(m_mutex);
    m_tasks.push_back(std::move(task));
    if (hasThread())
        m_changed.notify_all();
    else if (m_tasks.size() == 1) // otherwise somebody is running them already
        runTasks(lock);
}

void TaskQueue::waitForDone()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_tasks.empty(); });
}

bool TaskQueue::hasThread()
{
    try {
        if (!m_thread.joinable())
            m_thread = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

void TaskQueue::run()
{
    lowerThreadPriority();
    std::unique_lock lock(m_mutex);
    while (!m_closed || !m_tasks.empty()) {
        m_changed.wait(lock, [this] { return m_closed || !m_tasks.empty(); });
        runTasks(lock);
    }
}

void TaskQueue::runTasks(std::unique_lock<std::mutex>& lock)
{
    while (!m_tasks.empty()) {
        const std::function<void()>& task = m_tasks.front(); // stays put while others are added
        lock.unlock();
        task();
        lock.lock();
        m_tasks.pop_front();
        m_changed.notify_all();
    }
}

} // namespace varno
