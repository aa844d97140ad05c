#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace varno {

/// Runs tasks in the background, one after the other, in the order in which they came. Destroying
/// the queue finishes them first. Where there is no thread to be had they run on the spot. Any
/// thread.
class TaskQueue {
public:
    TaskQueue() = default;
    ~TaskQueue();
    TaskQueue(const TaskQueue&) = delete;
    TaskQueue& operator=(const TaskQueue&) = delete;

    void add(std::function<void()> task);

    /// Blocks until all tasks added so far are done.
    void waitForDone();

private:
    [[nodiscard]] bool hasThread();
    void run();
    void runTasks(std::unique_lock<std::mutex>& lock);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_tasks; ///< the first one is running
    bool m_closed = false;
    std::thread m_thread; ///< from the first task on
};

} // namespace varno
