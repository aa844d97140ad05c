#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace varno::bench {

/// What a figure is, and how it is read off the runs of its benchmark.
enum class Measure {
    time,        ///< of one iteration
    timePerItem, ///< of one of the items that the benchmark counted
    itemRate,
    byteRate,
    bytes,  ///< of a counter
    number, ///< of a counter
};

/// What our figure should be, or its ratio to the reference's.
struct Bound {
    enum class Kind { ratioAtLeast, ratioAtMost, atMost };
    Kind kind;
    double value; ///< in seconds, bytes, or of no unit
};

constexpr Bound ratioAtLeast(double ratio)
{
    return {Bound::Kind::ratioAtLeast, ratio};
}
constexpr Bound ratioAtMost(double ratio)
{
    return {Bound::Kind::ratioAtMost, ratio};
}
constexpr Bound atMost(double figure)
{
    return {Bound::Kind::atMost, figure};
}

/// How long the main thread may be kept: a frame of the screen, and what a user takes for at once.
constexpr Bound withinFrame = atMost(16.7e-3);
constexpr Bound atOnce = atMost(100e-3);

/// One line of the table. Benchmarks go by their names; "name:counter" is a counter of one, whose
/// times are in seconds.
struct Line {
    std::string name;
    Measure measure = Measure::time;
    std::string ours;
    std::string reference = {}; ///< empty when there is nothing to compare with
    std::optional<Bound> wanted = {};
};

/// The medians of all repetitions, ours beside the reference, and the usual console output above. A
/// benchmark that failed once has no figures, nor has a counter that was not finite once.
class Table final : public benchmark::ConsoleReporter {
public:
    Table()
        : ConsoleReporter(OO_None)
    {
    }

    void add(const Line& line) { m_lines.push_back(line); }

    /// Runs all benchmarks that are registered. `arguments` are those of a program: its name, then
    /// flags. What is compared runs interleaved, so that a slow moment of the machine hits both
    /// sides.
    void run(std::vector<std::string> arguments);

    /// Whether everything that is wanted was met.
    bool print(std::ostream& out) const;

    void ReportRuns(const std::vector<Run>& runs) override;

private:
    [[nodiscard]] std::optional<double> figure(const std::string& benchmark, Measure measure) const;
    bool print(std::ostream& out, const Line& line) const;

    std::vector<Line> m_lines;
    std::map<std::string, Run> m_medians; ///< by the name of the benchmark
    std::set<std::string> m_failed;
};

} // namespace varno::bench
