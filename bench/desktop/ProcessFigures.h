#pragma once

#include <QtGlobal>

#include <optional>

namespace varno::bench {

/// What the system tells of a process, all its threads together. Nothing if it does not tell.
class ProcessFigures {
public:
    explicit ProcessFigures(qint64 process)
        : m_process(process)
    {
    }

    // In bytes: what of it is in memory, and the same with its share only of what others use too.
    [[nodiscard]] std::optional<double> residentSize() const;
    [[nodiscard]] std::optional<double> proportionalSize() const;

    /// Processor time, in the system's ticks.
    [[nodiscard]] std::optional<double> processorTicks() const;

    /// How often a thread went to sleep by itself.
    [[nodiscard]] std::optional<double> voluntarySwitches() const;

    /// How many threads sleep in a call that ends by itself: so does one that has a timer.
    [[nodiscard]] std::optional<double> timedWaits() const;

private:
    qint64 m_process;
};

} // namespace varno::bench
