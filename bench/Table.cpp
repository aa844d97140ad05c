#include "bench/Table.h"

#include "bench/Format.h"

#include <string_view>
#include <utility>

namespace varno::bench {
namespace {

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
    }
    return {};
}

std::string boundText(const Bound& bound)
{
    return format(bound.kind == Bound::Kind::atLeast ? ">= %g" : "<= %g", bound.ratio);
}

bool meets(const Bound& bound, double ratio)
{
    return bound.kind == Bound::Kind::atLeast ? ratio >= bound.ratio : ratio <= bound.ratio;
}

double counter(const benchmark::BenchmarkReporter::Run& run, const char* name)
{
    const auto found = run.counters.find(name);
    return found == run.counters.end() ? 0 : found->second.value;
}

} // namespace

void Table::ReportRuns(const std::vector<Run>& runs)
{
    std::vector<Run> shown;
    for (const Run& run : runs) {
        if (run.error_occurred)
            shown.push_back(run);
        if (run.run_type != Run::RT_Aggregate)
            continue;
        shown.push_back(run);
        if (run.aggregate_name == "median")
            m_medians[run.run_name.function_name] = run;
    }
    ConsoleReporter::ReportRuns(shown);
}

void Table::print(std::ostream& out) const
{
    out << format(columns, "", "ours", "reference", "ratio", "wanted", "");
    for (const Line& line : m_lines)
        print(out, line);
}

void Table::print(std::ostream& out, const Line& line) const
{
    const auto ours = figure(line.ours, line.measure);
    const auto reference = figure(line.reference, line.measure);
    const auto ratio =
        ours && reference ? std::optional(*ours / *reference) : std::optional<double>();
    const std::string wanted = line.wanted    ? boundText(*line.wanted)
                               : line.longest ? "<= " + timeText(*line.longest)
                                              : "-";
    std::string verdict;
    if (line.wanted)
        verdict = !ratio ? "not measured" : meets(*line.wanted, *ratio) ? "met" : "not met";
    else if (line.longest)
        verdict = !ours ? "not measured" : *ours <= *line.longest ? "met" : "not met";
    out << format(columns, line.name.c_str(), figureText(ours, line.measure).c_str(),
                  figureText(reference, line.measure).c_str(),
                  ratio ? format("%.3g", *ratio).c_str() : "-", wanted.c_str(), verdict.c_str());
}

std::optional<double> Table::figure(const std::string& benchmark, Measure measure) const
{
    const std::size_t colon = benchmark.find(':');
    const auto found = m_medians.find(benchmark.substr(0, colon));
    if (found == m_medians.end())
        return std::nullopt;
    const Run& run = found->second;
    if (colon != std::string::npos)
        return counter(run, benchmark.c_str() + colon + 1);
    switch (measure) {
    case Measure::time:
        return run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
    case Measure::timePerItem:
        return 1 / counter(run, "items_per_second");
    case Measure::itemRate:
        return counter(run, "items_per_second");
    case Measure::byteRate:
        return counter(run, "bytes_per_second");
    }
    return std::nullopt;
}

} // namespace varno::bench
