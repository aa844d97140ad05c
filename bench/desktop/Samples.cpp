#include "bench/desktop/Samples.h"

#include "bench/Format.h"

#include <algorithm>

namespace varno::bench {
namespace {

std::string figureText(const std::optional<double>& figure, Unit unit)
{
    if (!figure)
        return "-";
    switch (unit) {
    case Unit::seconds:
        return format("%.2f ms", *figure * 1e3);
    case Unit::bytes:
        return format("%.1f MB", *figure / 1e6);
    case Unit::number:
        return format("%.3g", *figure);
    }
    return {};
}

/// Prints it; whether it was met, or nothing was wanted.
bool print(const Line& line)
{
    const auto ratio = line.ours && line.reference && *line.reference > 0
                           ? std::optional(*line.ours / *line.reference)
                           : std::optional<double>();
    const std::string wanted = line.mostRatio ? format("<= %g", *line.mostRatio)
                               : line.most    ? "<= " + figureText(line.most, line.unit)
                                              : "-";
    const std::optional<double>& most = line.mostRatio ? line.mostRatio : line.most;
    const std::optional<double>& measured = line.mostRatio ? ratio : line.ours;
    const bool met = !most || (measured && *measured <= *most);
    const char* verdict = !most ? "" : !measured ? "not measured" : met ? "met" : "missed";
    std::fputs(format(columns, line.name.c_str(), figureText(line.ours, line.unit).c_str(),
                      figureText(line.reference, line.unit).c_str(),
                      ratio ? format("%.3g", *ratio).c_str() : "-", wanted.c_str(), verdict)
                   .c_str(),
               stdout);
    return met;
}

} // namespace

void Samples::add(std::optional<double> figure)
{
    if (figure)
        m_figures.push_back(*figure);
    else
        m_failed = true;
}

std::optional<double> Samples::median() const
{
    if (m_failed || m_figures.empty())
        return std::nullopt;
    std::vector<double> sorted = m_figures;
    std::sort(sorted.begin(), sorted.end());
    const std::size_t middle = sorted.size() / 2;
    return sorted.size() % 2 == 1 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

bool print(const std::vector<Line>& lines)
{
    std::fputs(format(columns, "", "ours", "reference", "ratio", "wanted", "").c_str(), stdout);
    bool met = true;
    for (const Line& line : lines)
        met = print(line) && met;
    return met;
}

} // namespace varno::bench
