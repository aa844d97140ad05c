#include "providers/TaskGroup.h"

#include <system_error>
#include <utility>

namespace varno {

TaskGroup::~TaskGroup()
{
    for (Running& running : m_running)
        running.thread.request_stop();
}

bool TaskGroup::start(Task task)
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

} // namespace varno
