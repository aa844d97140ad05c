#include "bench/Benches.h"
#include "bench/Samples.h"
#include "core/AppViewModel.h"
#include "core/SessionCodec.h"
#include "platform/Files.h"
#include "platform/linux/IniPreferencesStore.h"
#include "tests/ControllerFixture.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;

/// A controller on real files, with a history of 4 MB.
class Controller {
public:
    Controller()
    {
        if (!writeFileAtomically(m_historyPath, encodeSessions(historySample())))
            qFatal("the history cannot be written");
    }

    void start()
    {
        m_preferences.emplace(m_folder.filePath(u"Varno.conf"_s));
        m_history.emplace(m_historyPath);
        m_model.emplace(
            AppViewModel::Dependencies{*m_preferences, *m_history, m_service, m_service, [] {
                                           return QDateTime::fromSecsSinceEpoch(0);
                                       }}); // keeps all sessions
        m_history->read();
    }

    /// Until the background is idle, and has told what it did.
    void settle()
    {
        while (!m_history->isRead())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        m_history->waitForDone();
        m_preferences->waitForDone();
        QCoreApplication::sendPostedEvents();
    }

    void end()
    {
        m_model.reset();
        m_history.reset();
        m_preferences.reset();
    }

    [[nodiscard]] AppViewModel& model() { return *m_model; }
    [[nodiscard]] HistoryStore& history() { return *m_history; }

private:
    QTemporaryDir m_folder;
    QString m_historyPath = m_folder.filePath(u"history.json"_s);
    ModelServiceByHand m_service;
    std::optional<IniPreferencesStore> m_preferences;
    std::optional<HistoryStore> m_history;
    std::optional<AppViewModel> m_model;
};

template <typename Work>
void timeIteration(benchmark::State& state, Work work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    state.SetIterationTime(static_cast<double>(timer.nsecsElapsed()) * 1e-9);
}

void start(benchmark::State& state)
{
    Controller controller;
    for ([[maybe_unused]] auto iteration : state) {
        timeIteration(state, [&] { controller.start(); });
        controller.settle();
        controller.end();
    }
}

using Operation = void (*)(Controller& controller, int number);

void operate(benchmark::State& state, Operation operation)
{
    Controller controller;
    controller.start();
    controller.settle();
    int number = 0;
    for ([[maybe_unused]] auto iteration : state) {
        timeIteration(state, [&] { operation(controller, ++number); });
        controller.settle();
    }
}

void save(Controller& controller, int)
{
    controller.history().put(controller.history().sessions().sessions().constLast());
}

void search(Controller& controller, int number)
{
    controller.model().search(u"query %1"_s.arg(number));
}

void switchTheme(Controller& controller, int number)
{
    controller.model().setTheme(number % 2 ? AppTheme::dark : AppTheme::cream);
}

void switchFontSize(Controller& controller, int number)
{
    controller.model().setFontSize(number % 2 ? FontSize::large : FontSize::small);
}

void switchModel(Controller& controller, int number)
{
    controller.model().setAIModel(number % 2 ? AIModel::haiku : AIModel::sonnet);
}

void switchWebSearch(Controller& controller, int number)
{
    controller.model().setWebSearchEnabled(number % 2 == 1);
}

template <typename... Run>
void add(Table& table, const std::string& name, Run... run)
{
    const std::string benchmark = "operation/" + name;
    addTimed(benchmark, 10, run...);
    table.add({.name = "main thread: " + name + ", with its files",
               .ours = benchmark,
               .wanted = atMost(1e-3)}); // a sixteenth of a frame
}

} // namespace

void addOperations(Table& table)
{
    add(table, "start", start);
    add(table, "save", operate, save);
    add(table, "search", operate, search);
    add(table, "setTheme", operate, switchTheme);
    add(table, "setFontSize", operate, switchFontSize);
    add(table, "setAIModel", operate, switchModel);
    add(table, "setWebSearchEnabled", operate, switchWebSearch);
}

} // namespace varno::bench
