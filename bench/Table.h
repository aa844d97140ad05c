#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace varno::bench {

/// How the figure of a benchmark is read off its runs.
enum class Measure {
    time,        ///< of one iteration
    timePerItem, ///< of one of the items that the benchmark counted
    itemRate,
    byteRate,
};

/// What the ratio of our figure to the reference's should be.
struct Bound {
    enum class Kind { atLeast, atMost };
    Kind kind;
    double ratio;
};

/// One line of the table. Benchmarks go by their names; "name:counter" is a counter of one, in
/// seconds.
struct Line {
    std::string name;
    Measure measure = Measure::time;
    std::string ours;
    std::string reference = {}; ///< empty when there is nothing to compare with
    std::optional<Bound> wanted = {};
    std::optional<double> longest = {}; ///< what a time should not exceed, in seconds
};

/// The medians of all repetitions, ours beside the reference, and the usual console output above.
class Table final : public benchmark::ConsoleReporter {
public:
    Table()
        : ConsoleReporter(OO_None)
    {
    }

    void add(const Line& line) { m_lines.push_back(line); }

    void ReportRuns(const std::vector<Run>& runs) override;

    void print(std::ostream& out) const;

private:
    [[nodiscard]] std::optional<double> figure(const std::string& benchmark, Measure measure) const;
    void print(std::ostream& out, const Line& line) const;

    std::vector<Line> m_lines;
    std::map<std::string, Run> m_medians; ///< by the name of the benchmark
};

} // namespace varno::bench
