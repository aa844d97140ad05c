#include "bench/Table.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace varno::bench {
namespace {

/// A line: name, ours, reference, ratio, wanted, verdict.
constexpr const char* columns = "%-52s %14s %14s %8s %11s  %s\n";

template <typename... Values>
std::string format(const char* pattern, Values... values)
{
    std::array<char, 200> text = {};
    std::snprintf(text.data(), text.size(), pattern, values...);
    return text.data();
}

std::string timeText(double seconds)
{
    if (seconds < 1e-6)
        return format("%.0f ns", seconds * 1e9);
    if (seconds < 1e-3)
        return format("%.2f us", seconds * 1e6);
    return format("%.2f ms", seconds * 1e3);
}

std::string figureText(std::optional<double> figure, Measure measure)
{
    if (!figure)
        return "-";
    switch (measure) {
    case Measure::time:
    case Measure::timePerItem:
        return timeText(*figure);
    case Measure::itemRate:
        return format("%.0f /s", *figure);
    case Measure::byteRate:
        return format("%.0f MB/s", *figure / 1e6);
    case Measure::bytes:
        return format("%.1f MB", *figure / 1e6);
    case Measure::number:
        return format("%.3g", *figure);
    }
    return {};
}

std::string boundText(const Bound& bound, Measure measure)
{
    return (bound.kind == Bound::Kind::ratioAtLeast ? ">= " : "<= ") +
           (bound.kind == Bound::Kind::atMost ? figureText(bound.value, measure)
                                              : format("%g", bound.value));
}

std::optional<double> counter(const benchmark::BenchmarkReporter::Run& run, const std::string& name)
{
    const auto found = run.counters.find(name);
    return found == run.counters.end() ? std::nullopt : std::optional<double>(found->second.value);
}

} // namespace

void Table::run(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin() + 1,
                     {"--benchmark_enable_random_interleaving=true", "--benchmark_repetitions=15",
                      "--benchmark_min_time=0.1"});
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    int count = static_cast<int>(pointers.size());
    benchmark::Initialize(&count, pointers.data());
    benchmark::RunSpecifiedBenchmarks(this);
}

void Table::ReportRuns(const std::vector<Run>& runs)
{
    std::vector<Run> shown;
    for (const Run& run : runs) {
        const std::string& name = run.run_name.function_name;
        if (run.error_occurred)
            m_failed.insert(name);
        for (const auto& [counter, value] : run.counters)
            if (run.run_type == Run::RT_Iteration && !std::isfinite(value.value))
                m_failed.insert(name + ':' + counter);
        const bool isAlone = run.repetitions == 1; // then there are no medians
        if (isAlone || run.error_occurred || run.run_type == Run::RT_Aggregate)
            shown.push_back(run);
        if (isAlone || run.aggregate_name == "median")
            m_medians[name] = run;
    }
    ConsoleReporter::ReportRuns(shown);
}

bool Table::print(std::ostream& out) const
{
    out << '\n' << format(columns, "", "ours", "reference", "ratio", "wanted", "");
    bool met = true;
    for (const Line& line : m_lines)
        met = print(out, line) && met;
    return met;
}

/// Whether it was met, or nothing was wanted.
bool Table::print(std::ostream& out, const Line& line) const
{
    const auto ours = figure(line.ours, line.measure);
    const auto reference = figure(line.reference, line.measure);
    const auto ratio = ours && reference && *reference > 0 ? std::optional(*ours / *reference)
                                                           : std::optional<double>();
    std::string wanted = "-";
    const char* verdict = "";
    bool met = true;
    if (line.wanted) {
        const auto [kind, value] = *line.wanted;
        const auto& judged = kind == Bound::Kind::atMost ? ours : ratio;
        met = judged && (kind == Bound::Kind::ratioAtLeast ? *judged >= value : *judged <= value);
        wanted = boundText(*line.wanted, line.measure);
        verdict = met ? "met" : judged ? "not met" : "not measured";
    }
    out << format(columns, line.name.c_str(), figureText(ours, line.measure).c_str(),
                  figureText(reference, line.measure).c_str(),
                  ratio ? format("%.3g", *ratio).c_str() : "-", wanted.c_str(), verdict);
    return met;
}

std::optional<double> Table::figure(const std::string& benchmark, Measure measure) const
{
    const std::size_t colon = benchmark.find(':');
    const std::string name = benchmark.substr(0, colon);
    const auto found = m_medians.find(name);
    if (found == m_medians.end() || m_failed.contains(name) || m_failed.contains(benchmark))
        return std::nullopt;
    const Run& run = found->second;
    if (colon != std::string::npos)
        return counter(run, benchmark.substr(colon + 1));
    switch (measure) {
    case Measure::timePerItem: {
        const auto rate = counter(run, "items_per_second");
        return rate ? std::optional(1 / *rate) : rate;
    }
    case Measure::itemRate:
        return counter(run, "items_per_second");
    case Measure::byteRate:
        return counter(run, "bytes_per_second");
    default:
        return run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
    }
}

} // namespace varno::bench
