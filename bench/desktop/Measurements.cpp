#include "bench/desktop/Measurements.h"

#include "bench/desktop/ProcessFigures.h"

#include <utility>

namespace varno::bench {
namespace {

using namespace std::chrono_literals;

/// Until a program has done what it does after its start, or after it was hidden.
constexpr std::chrono::milliseconds settling = 1s;

std::optional<double> difference(const std::optional<double>& later,
                                 const std::optional<double>& earlier)
{
    return later && earlier ? std::optional(*later - *earlier) : std::nullopt;
}

} // namespace

Measurements::Measurements(StatusHost& host, Screen& screen, std::vector<const Installed*> programs)
    : m_host(host)
    , m_screen(screen)
    , m_programs(std::move(programs))
    , m_figures(m_programs.size())
{
    for (const Installed* program : m_programs) {
        RunningProgram running(*program, m_host);
        rest(settling);
        static_cast<void>(running.show(m_screen)); // caches are filled by then
    }
}

template <typename Measure>
void Measurements::inTurns(std::size_t count, int rounds, Measure measure)
{
    for (int round = 0; round < rounds; ++round)
        for (std::size_t turn = 0; turn < count; ++turn) {
            const std::size_t place = (turn + static_cast<std::size_t>(round)) % count;
            measure(*m_programs[place], m_figures[place]);
        }
}

void Measurements::measureStarts(int rounds)
{
    inTurns(m_programs.size(), rounds, [this](const Installed& program, Figures& figures) {
        const RunningProgram running(program, m_host);
        figures.start.add(running.startTime());
        rest(settling / 4); // before it is ended
    });
}

void Measurements::measureShows(std::size_t count, int rounds, int laterShows)
{
    inTurns(count, rounds, [=, this](const Installed& program, Figures& figures) {
        const RunningProgram running(program, m_host);
        rest(settling);
        const std::optional<double> first = running.show(m_screen);
        figures.firstShow.add(first);
        rest(settling);
        const ProcessFigures process(running.process());
        figures.residentSize.add(process.residentSize());
        figures.proportionalSize.add(process.proportionalSize());
        for (int i = 0; first && i < laterShows; ++i)
            figures.laterShow.add(running.show(m_screen));
    });
}

void Measurements::measureIdling(std::size_t count, std::chrono::seconds time)
{
    inTurns(count, 1, [=, this](const Installed& program, Figures& figures) {
        const RunningProgram running(program, m_host);
        rest(settling);
        static_cast<void>(running.show(m_screen));
        rest(2 * settling);
        const ProcessFigures process(running.process());
        const auto ticks = process.processorTicks();
        const auto switches = process.voluntarySwitches();
        rest(time);
        figures.idleTicks.add(difference(process.processorTicks(), ticks));
        const auto woken = difference(process.voluntarySwitches(), switches);
        figures.idleSwitches.add(woken ? std::optional(*woken / double(time.count())) : woken);
        figures.timedWaits.add(process.timedWaits());
    });
}

} // namespace varno::bench
