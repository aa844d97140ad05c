#include "bench/Benches.h"
#include "bench/Samples.h"
#include "core/AppViewModel.h"
#include "core/SessionCodec.h"
#include "platform/Files.h"
#include "platform/fake/FakePreferencesStore.h"
#include "platform/linux/IniPreferencesStore.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;

constexpr int startCount = 10;
constexpr int saveCount = 5;
constexpr int operationCount = 20;

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

/// A controller on real files, with a history of 4 MB.
class Files {
public:
    Files()
    {
        if (!writeFileAtomically(path(), encodeSessions(historySample())))
            qFatal("the history cannot be written");
    }

    [[nodiscard]] QString path() const { return m_folder.filePath(u"history.json"_s); }

    void readHistory()
    {
        history.read();
        while (!history.isRead())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    /// Until the background is idle, and has told what it did.
    void settle()
    {
        history.waitForDone();
        preferences.waitForDone();
        QCoreApplication::sendPostedEvents();
    }

private:
    QTemporaryDir m_folder;
    SilentService m_service;

public:
    HistoryStore history{path()};
    IniPreferencesStore preferences{m_folder.filePath(u"Varno.conf"_s)};
    AppViewModel model{{preferences, history, m_service, m_service,
                        [] { return QDateTime::fromSecsSinceEpoch(0); }}}; // keeps all sessions
};

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
            history.read();
        });
        history.waitForDone();
    }
}

void startWithFile(benchmark::State& state)
{
    start(state, Files().path());
}

void startWithoutFile(benchmark::State& state)
{
    const QTemporaryDir folder;
    start(state, folder.filePath(u"history.json"_s));
}

/// What an operation costs the main thread.
template <typename Operation>
void operate(benchmark::State& state, Operation operation)
{
    Files files;
    files.readHistory();
    int number = 0;
    for ([[maybe_unused]] auto iteration : state) {
        timeIteration(state, [&] { operation(files.model, ++number); });
        files.settle();
    }
}

void search(benchmark::State& state)
{
    operate(state,
            [](AppViewModel& model, int number) { model.search(u"query %1"_s.arg(number)); });
}

void switchTheme(benchmark::State& state)
{
    operate(state, [](AppViewModel& model, int number) {
        model.setTheme(number % 2 ? AppTheme::dark : AppTheme::cream);
    });
}

void switchFontSize(benchmark::State& state)
{
    operate(state, [](AppViewModel& model, int number) {
        model.setFontSize(number % 2 ? FontSize::large : FontSize::small);
    });
}

void switchModel(benchmark::State& state)
{
    operate(state, [](AppViewModel& model, int number) {
        model.setAIModel(number % 2 ? AIModel::haiku : AIModel::sonnet);
    });
}

void switchWebSearch(benchmark::State& state)
{
    operate(state,
            [](AppViewModel& model, int number) { model.setWebSearchEnabled(number % 2 == 1); });
}

void saveInBackground(benchmark::State& state)
{
    Files files;
    files.readHistory();
    const Session session = files.history.sessions().sessions().constLast();
    for ([[maybe_unused]] auto iteration : state) {
        timeIteration(state, [&] { files.history.put(session); });
        files.settle();
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
    const auto add = [](const char* name, void (*run)(benchmark::State&), int count) {
        benchmark::RegisterBenchmark(name, run)->UseManualTime()->Iterations(count);
    };
    add("start/with-file", startWithFile, startCount);
    add("start/without-file", startWithoutFile, startCount);
    add("save/background", saveInBackground, saveCount);
    add("save/on-the-spot", saveOnTheSpot, saveCount);

    table.add({.name = "main thread: start with that history, against none",
               .ours = "start/with-file",
               .reference = "start/without-file"});
    table.add({.name = "main thread: one save, against saving on the spot",
               .ours = "save/background",
               .reference = "save/on-the-spot"});

    using Operation = std::pair<const char*, void (*)(benchmark::State&)>;
    for (const auto& [name, run] :
         {Operation("search", search), Operation("setTheme", switchTheme),
          Operation("setFontSize", switchFontSize), Operation("setAIModel", switchModel),
          Operation("setWebSearchEnabled", switchWebSearch)}) {
        const std::string benchmark = std::string("operation/") + name;
        add(benchmark.c_str(), run, operationCount);
        table.add({.name = std::string("main thread: ") + name + ", with its files",
                   .ours = benchmark,
                   .longest = 1e-3}); // a sixteenth of a frame
    }
}

} // namespace varno::bench
