#pragma once

#include <algorithm>
#include <ctime>

namespace varno::bench {

/// The processor time that this thread has used, in seconds: what other programs do meanwhile does
/// not count.
inline double processorTime()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// What keeps the main thread, one block of work after another; between two of them it can attend
/// to the reader.
class Blocks {
public:
    template <typename Work>
    void run(Work work)
    {
        const double begin = processorTime();
        work();
        const double time = processorTime() - begin;
        m_total += time;
        m_longest = std::max(m_longest, time);
    }

    [[nodiscard]] double total() const { return m_total; }
    [[nodiscard]] double longest() const { return m_longest; }

private:
    double m_total = 0;
    double m_longest = 0;
};

} // namespace varno::bench
