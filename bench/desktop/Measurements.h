#pragma once

#include "bench/desktop/Program.h"
#include "bench/desktop/Samples.h"

#include <vector>

namespace varno::bench {

/// What is known of one program after all rounds. Times are in seconds, sizes in bytes.
struct Figures {
    Samples start;     ///< until its icon was known
    Samples firstShow; ///< from the key until its window was painted
    Samples laterShow;
    Samples residentSize; ///< hidden, after it was shown once
    Samples proportionalSize;
    // Hidden, after it was shown once and left alone
    Samples idleTicks;    ///< of processor time, in all
    Samples idleSwitches; ///< a second, in all threads
    Samples timedWaits;
};

/// Runs programs in turns, so that a slow moment of the machine hits all of them. Each of them has
/// one place in `programs` and the same one in the figures.
class Measurements {
public:
    Measurements(StatusHost& host, Screen& screen, std::vector<const Installed*> programs);

    /// Starts all of them in every round, beginning with another one each time.
    void measureStarts(int rounds);
    /// The first `count` programs only.
    void measureShows(std::size_t count, int rounds, int laterShows);
    void measureIdling(std::size_t count, std::chrono::seconds time);

    [[nodiscard]] const std::vector<Figures>& figures() const { return m_figures; }

private:
    template <typename Measure>
    void inTurns(std::size_t count, int rounds, Measure measure);

    StatusHost& m_host;
    Screen& m_screen;
    std::vector<const Installed*> m_programs;
    std::vector<Figures> m_figures;
};

} // namespace varno::bench
