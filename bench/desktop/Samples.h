#pragma once

#include <optional>
#include <string>
#include <vector>

namespace varno::bench {

/// The figures of one thing, measured again and again.
class Samples {
public:
    /// Nothing is a measurement that failed: then there is no median.
    void add(std::optional<double> figure);

    [[nodiscard]] std::optional<double> median() const;

private:
    std::vector<double> m_figures;
    bool m_failed = false;
};

enum class Unit { seconds, bytes, number };

/// One line of a table: our figure, and either what its ratio to the reference's should be at most,
/// or what it should be at most itself.
struct Line {
    std::string name;
    Unit unit = Unit::seconds;
    std::optional<double> ours;
    std::optional<double> reference = {};
    std::optional<double> mostRatio = {};
    std::optional<double> most = {};
};

/// Prints it in the columns of the other benchmarks. Whether everything that is wanted was met.
[[nodiscard]] bool print(const std::vector<Line>& lines);

} // namespace varno::bench
