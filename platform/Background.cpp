#include "platform/Background.h"

#include "platform/Threads.h"

#include <system_error>
#include <utility>

namespace varno {

bool Background::start(Task task)
{
    const std::scoped_lock lock(m_mutex);
    m_running.remove_if([](const Running& running) { return running.done.load(); });
    Running& running = m_running.emplace_back();
    try {
        running.thread =
            std::jthread([task = std::move(task), &running](const std::stop_token& stop) {
                task(stop);
                running.done = true;
            });
    } catch (const std::system_error&) {
        m_running.pop_back();
        return false;
    }
    return true;
}

void Background::stop()
{
    std::list<Running> stopping; // each where it is: their threads know
    {
        const std::scoped_lock lock(m_mutex);
        stopping.swap(m_running);
    }
    for (Running& running : stopping)
        running.thread.request_stop();
}

void Lane::add(Task task)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_tasks.push_back(std::move(task));
        if (m_tasks.size() > 1)
            return; // somebody is running them already
    }
    const bool started = m_background.start([this](const std::stop_token& stop) {
        lowerThreadPriority();
        run(stop);
    });
    if (!started)
        run({});
}

void Lane::waitForDone()
{
    std::unique_lock lock(m_mutex);
    m_emptied.wait(lock, [this] { return m_tasks.empty(); });
}

bool Lane::waitForDone(std::chrono::milliseconds patience)
{
    std::unique_lock lock(m_mutex);
    return m_emptied.wait_for(lock, patience, [this] { return m_tasks.empty(); });
}

void Lane::stop()
{
    {
        const std::scoped_lock lock(m_mutex);
        if (m_tasks.size() > 1)
            m_tasks.erase(m_tasks.begin() + 1, m_tasks.end());
    }
    m_background.stop();
}

void Lane::run(const std::stop_token& stop)
{
    std::unique_lock lock(m_mutex);
    do {
        const Task& task = m_tasks.front(); // stays put while others are added
        lock.unlock();
        task(stop);
        lock.lock();
        m_tasks.pop_front();
    } while (!m_tasks.empty());
    m_emptied.notify_all();
}

} // namespace varno
