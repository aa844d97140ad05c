#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <list>
#include <mutex>
#include <stop_token>
#include <thread>

namespace varno {

/// What runs in the background. It ends soon after `stop` was asked for.
using Task = std::function<void(const std::stop_token& stop)>;

/// Tasks that each run on a thread of their own. Its end asks all of them to stop, and waits until
/// they have. It therefore stands last among the members of the class whose tasks it runs. Any
/// thread.
class Background {
public:
    Background() = default;
    ~Background() { stop(); }
    Background(const Background&) = delete;
    Background& operator=(const Background&) = delete;

    /// Starts `task` at once; false if there is no thread to be had.
    [[nodiscard]] bool start(Task task);

    /// Asks all tasks to stop and waits until they have. Others may be started afterwards.
    void stop();

private:
    struct Running {
        std::atomic<bool> done = false;
        std::jthread thread;
    };

    std::mutex m_mutex;
    std::list<Running> m_running;
};

/// Tasks that run one after the other, in the order in which they were added. There is a thread
/// while there are tasks, which gives way to those that the user waits for; where none is to be had
/// they run on the spot. Its end finishes what was added. Any thread, but for the end.
class Lane {
public:
    Lane() = default;
    ~Lane() { waitForDone(); }
    Lane(const Lane&) = delete;
    Lane& operator=(const Lane&) = delete;

    void add(Task task);

    /// Blocks until all tasks added so far are done.
    void waitForDone();
    /// The same for `patience` at most; whether they are.
    bool waitForDone(std::chrono::milliseconds patience);

    /// Asks the running task to stop, drops those behind it, and waits until it has.
    void stop();

private:
    void run(const std::stop_token& stop);

    std::mutex m_mutex;
    std::condition_variable m_emptied;
    std::deque<Task> m_tasks; ///< the first one is running
    Background m_background;
};

} // namespace varno
