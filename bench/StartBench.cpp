#include "bench/Benches.h"
#include "bench/HistorySamples.h"
#include "core/AppViewModel.h"
#include "core/SessionCodec.h"
#include "platform/Files.h"
#include "platform/fake/FakePreferencesStore.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;

constexpr int startCount = 10;
constexpr int saveCount = 5;

/// Never asked.
class SilentService final : public ModelService {
public:
    [[nodiscard]] std::unique_ptr<EntryStream> streamEntry(const ModelRequest&) const override
    {
        return std::make_unique<EntryStream>();
    }
    [[nodiscard]] std::unique_ptr<TOCRequest> generateTOC(const QString&, const QString&,
                                                          bool) const override
    {
        return std::make_unique<TOCRequest>();
    }
};

/// Measures the work of one function alone.
template <typename Work>
void timeIteration(benchmark::State& state, Work work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    state.SetIterationTime(static_cast<double>(timer.nsecsElapsed()) * 1e-9);
}

void start(benchmark::State& state, const QString& path)
{
    FakePreferencesStore preferences;
    const SilentService service;
    for ([[maybe_unused]] auto iteration : state) {
        HistoryStore history(path);
        std::unique_ptr<AppViewModel> model;
        timeIteration(state, [&] {
            model = std::make_unique<AppViewModel>(
                AppViewModel::Dependencies{preferences, history, service, service});
        });
        history.waitForDone();
    }
}

void startWithFile(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"history.json"_s);
    if (!writeFileAtomically(path, encodeSessions(historySample())))
        state.SkipWithError("the history cannot be written");
    start(state, path);
}

void startWithoutFile(benchmark::State& state)
{
    const QTemporaryDir folder;
    start(state, folder.filePath(u"history.json"_s));
}

void saveInBackground(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"history.json"_s);
    if (!writeFileAtomically(path, encodeSessions(historySample())))
        state.SkipWithError("the history cannot be written");
    HistoryStore history(path);
    const Session session = history.sessions().sessions().constLast();
    for ([[maybe_unused]] auto iteration : state) {
        timeIteration(state, [&] { history.put(session); });
        history.waitForDone();
    }
}

void saveOnTheSpot(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QList<Session> sessions = historySample();
    const QString path = folder.filePath(u"history.json"_s);
    for ([[maybe_unused]] auto iteration : state) {
        timeIteration(state, [&] {
            if (!writeFileAtomically(path, encodeSessions(sessions)))
                state.SkipWithError("the history cannot be written");
        });
    }
}

} // namespace

void addStart(Table& table)
{
    benchmark::RegisterBenchmark("start/with-file", startWithFile)
        ->UseManualTime()
        ->Iterations(startCount);
    benchmark::RegisterBenchmark("start/without-file", startWithoutFile)
        ->UseManualTime()
        ->Iterations(startCount);
    benchmark::RegisterBenchmark("save/background", saveInBackground)
        ->UseManualTime()
        ->Iterations(saveCount);
    benchmark::RegisterBenchmark("save/on-the-spot", saveOnTheSpot)
        ->UseManualTime()
        ->Iterations(saveCount);

    table.add({.name = "main thread: start with that history, against none",
               .measure = Measure::time,
               .ours = "start/with-file",
               .reference = "start/without-file"});
    table.add({.name = "main thread: one save, against saving on the spot",
               .measure = Measure::time,
               .ours = "save/background",
               .reference = "save/on-the-spot"});
}

} // namespace varno::bench
