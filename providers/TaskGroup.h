#pragma once

#include <atomic>
#include <functional>
#include <list>
#include <mutex>
#include <stop_token>
#include <thread>

namespace varno {

/// Tasks that each run on a thread of their own. Destroying the group asks all of them to stop and
/// waits until they have.
class TaskGroup {
public:
    using Task = std::function<void(const std::stop_token& stop)>;

    TaskGroup() = default;
    ~TaskGroup();
    TaskGroup(const TaskGroup&) = delete;
    TaskGroup& operator=(const TaskGroup&) = delete;

    /// Starts `task` at once; false if there is no thread to be had. Any thread.
    [[nodiscard]] bool start(Task task);

private:
    struct Running {
        std::atomic<bool> done = false;
        std::jthread thread;
    };

    std::mutex m_mutex;
    std::list<Running> m_running;
};

} // namespace varno
