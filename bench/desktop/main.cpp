#include "bench/Samples.h"
#include "bench/Table.h"
#include "bench/desktop/ProcessFigures.h"
#include "bench/desktop/Program.h"
#include "core/SessionCodec.h"
#include "platform/Files.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QStandardPaths>

#include <iostream>
#include <limits>
#include <utility>

// Measures the whole program on a desktop, beside a bare program of its kind and beside another one
// that people use. Wants a session bus and an X server that nobody else works with.
//     varno-desktop-bench VARNO BARE-TRAY [ROUNDS]

namespace varno::bench {
namespace {

constexpr int laterShows = 3; // in each round
constexpr int idleTime = 20;  // seconds
/// Milliseconds until a program has done what it does after its start, or after it was hidden.
constexpr int settling = 1000;

/// Whom all measurements need.
struct Desktop {
    StatusHost host;
    Screen screen;
};

/// The figure of a measurement that failed is not finite.
double figure(const std::optional<double>& measured)
{
    return measured.value_or(std::numeric_limits<double>::infinity());
}

void measureStart(benchmark::State& state, const Program& program, Desktop& desktop)
{
    for ([[maybe_unused]] auto iteration : state) {
        const Start start(program, desktop.screen, desktop.host);
        state.counters["start"] = figure(start.time());
        QTest::qWait(settling / 4); // before it is ended
    }
}

void measureShow(benchmark::State& state, const Program& program, Desktop& desktop)
{
    for ([[maybe_unused]] auto iteration : state) {
        Start start(program, desktop.screen, desktop.host);
        QTest::qWait(settling);
        state.counters["first"] = figure(start.show());
        QTest::qWait(settling);
        const ProcessFigures process(start.process());
        state.counters["resident"] = figure(process.residentSize());
        state.counters["proportional"] = figure(process.proportionalSize());
        double later = 0;
        for (int i = 0; i < laterShows; ++i)
            later += figure(start.show()) / laterShows;
        state.counters["later"] = later;
    }
}

/// Of a launcher that lives from its key to the choice: a desktop starts it for each showing.
void measureLauncher(benchmark::State& state, const Program& program, Desktop& desktop)
{
    for ([[maybe_unused]] auto iteration : state) {
        if (!desktop.screen.waitForColors(0))
            state.SkipWithError("the screen is not empty");
        RunningProgram launcher(desktop.screen);
        launcher.path = program.path;
        launcher.arguments = program.arguments;
        launcher.set("HOME", program.home);
        const auto begin = Clock::now();
        launcher.launch();
        const auto painted = desktop.screen.waitForColors(program.colors);
        QTest::qWait(settling / 4);
        launcher.end();
        state.counters["shown"] =
            figure(painted ? std::optional(std::chrono::duration<double>(*painted - begin).count())
                           : std::nullopt);
    }
}

void measureIdling(benchmark::State& state, const Program& program, Desktop& desktop)
{
    for ([[maybe_unused]] auto iteration : state) {
        Start start(program, desktop.screen, desktop.host);
        QTest::qWait(settling);
        start.show();
        QTest::qWait(2 * settling);
        const ProcessFigures process(start.process());
        const double ticks = figure(process.processorTicks());
        const double switches = figure(process.voluntarySwitches());
        QTest::qWait(idleTime * 1000);
        state.counters["ticks"] = figure(process.processorTicks()) - ticks;
        state.counters["switches"] = (figure(process.voluntarySwitches()) - switches) / idleTime;
        state.counters["timed waits"] = figure(process.timedWaits());
    }
}

/// A full history of the last days.
void writeHistory(const QString& home)
{
    QList<Session> sessions = historySample();
    for (Session& session : sessions)
        session.createdAt = double(QDateTime::currentSecsSinceEpoch() - 978307200); // since 2001
    const QString folder = home + u"/.local/share/Varno"_s;
    QDir().mkpath(folder);
    if (!writeFileAtomically(folder + u"/session_history.json"_s, encodeSessions(sessions)))
        qFatal("the history cannot be written");
}

/// The shortcuts of CopyQ are commands of its own, in a file.
void writeCopyQCommands(const QString& home)
{
    const QString folder = home + u"/.config/copyq"_s;
    QDir().mkpath(folder);
    const QByteArray commands = "[Commands]\n"
                                "1\\Name=Toggle\n"
                                "1\\Command=copyq: toggle()\n"
                                "1\\IsGlobalShortcut=true\n"
                                "1\\GlobalShortcut=alt+meta+f\n"
                                "size=1\n";
    if (!writeFileAtomically(folder + u"/copyq-commands.ini"_s, commands))
        qFatal("the commands cannot be written");
}

/// All of them and their benchmarks. Each is started once beforehand, so that caches are filled.
void addPrograms(const QString& varno, const QString& bareTray, const QDir& homes, Desktop& desktop)
{
    const QStringList shortcut = {QString::number(pcKey::f), QString::number(pcKey::altSuper)};
    constexpr std::size_t content = 8; // the title, the box and what is in it
    Program ours = {.name = "varno", .path = varno, .colors = content};
    Program full = {.name = "varno-with-history", .path = varno, .colors = content};
    Program bare = {.name = "bare", .path = bareTray, .arguments = shortcut};
    Program copyQ = {.name = "CopyQ",
                     .path = QStandardPaths::findExecutable(u"copyq"_s),
                     .opensWhen = Program::Key::pressed,
                     .colors = 3};
    Program rofi = {.name = "rofi",
                    .path = QStandardPaths::findExecutable(u"rofi"_s),
                    .arguments = {u"-show"_s, u"run"_s},
                    .colors = 3};
    for (Program* program : {&ours, &full, &bare, &copyQ, &rofi}) {
        program->home = homes.filePath(QString::fromLatin1(program->name));
        homes.mkpath(program->home);
    }
    writeHistory(full.home);
    writeCopyQCommands(copyQ.home);

    const auto add = [&desktop](const std::string& what, const Program& program, auto measure) {
        return benchmark::RegisterBenchmark(
                   (what + '/' + program.name).c_str(),
                   [=, &desktop](auto& state) { measure(state, program, desktop); })
            ->Iterations(1);
    };
    for (const Program& program : {ours, full, bare, copyQ}) {
        Start start(program, desktop.screen, desktop.host);
        QTest::qWait(settling);
        start.show();
        add("start", program, measureStart);
    }
    for (const Program& program : {ours, bare, copyQ}) {
        add("show", program, measureShow);
        add("idle", program, measureIdling)->Repetitions(1);
    }
    if (!rofi.path.isEmpty())
        add("show", rofi, measureLauncher);
}

Table table()
{
    Table table;
    const auto add = [&table](const char* name, Measure measure, const std::string& ours,
                              const std::string& reference, std::optional<Bound> wanted = {}) {
        table.add({name, measure, ours, reference, wanted});
    };
    using M = Measure;
    add("start until its icon is known, against a bare one", M::time, "start/varno:start",
        "start/bare:start", ratioAtMost(1.2));
    add("the same, against CopyQ", M::time, "start/varno:start", "start/CopyQ:start",
        ratioAtMost(0.65));
    add("the same with a history of 4 MB, against none", M::time, "start/varno-with-history:start",
        "start/varno:start", ratioAtMost(1.1));
    add("memory, shown and hidden, against a bare one", M::bytes, "show/varno:resident",
        "show/bare:resident", ratioAtMost(1.5));
    add("the same, against CopyQ", M::bytes, "show/varno:resident", "show/CopyQ:resident",
        ratioAtMost(0.45));
    add("its share of it, against a bare one", M::bytes, "show/varno:proportional",
        "show/bare:proportional");
    add("the same, against CopyQ", M::bytes, "show/varno:proportional", "show/CopyQ:proportional");
    add("key until painted, first time, against a bare one", M::time, "show/varno:first",
        "show/bare:first", ratioAtMost(1.6));
    add("the same by itself", M::time, "show/varno:first", "", withinFrame);
    add("the same, against CopyQ", M::time, "show/varno:first", "show/CopyQ:first");
    add("key until painted, later, against a bare one", M::time, "show/varno:later",
        "show/bare:later", ratioAtMost(1.2));
    add("the same by itself", M::time, "show/varno:later", "", atMost(8.3e-3));
    add("the same, against CopyQ", M::time, "show/varno:later", "show/CopyQ:later");
    add("the same, against rofi, started anew", M::time, "show/varno:later", "show/rofi:shown");
    add("hidden for 20 s: processor time in ticks; CopyQ", M::number, "idle/varno:ticks",
        "idle/CopyQ:ticks", atMost(0));
    add("the same: wake-ups a second; CopyQ", M::number, "idle/varno:switches",
        "idle/CopyQ:switches", atMost(1));
    add("the same: threads that wait with a timer; CopyQ", M::number, "idle/varno:timed waits",
        "idle/CopyQ:timed waits", atMost(0));
    return table;
}

int run(const QStringList& arguments)
{
    Desktop desktop;
    if (arguments.size() < 3 || !desktop.host.isRegistered()) {
        std::cerr << "varno-desktop-bench VARNO BARE-TRAY [ROUNDS], "
                     "on a session bus without a status area\n";
        return 2;
    }
    const QTemporaryDir homes;
    addPrograms(arguments[1], arguments[2], QDir(homes.path()), desktop);
    Table table = bench::table();
    const QString rounds = arguments.value(3, u"15"_s);
    table.run({arguments[0].toStdString(), "--benchmark_repetitions=" + rounds.toStdString()});
    return table.print(std::cout) ? 0 : 1;
}

} // namespace
} // namespace varno::bench

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return varno::bench::run(QCoreApplication::arguments());
}
