#include "bench/HistorySamples.h"
#include "bench/desktop/Measurements.h"
#include "core/SessionCodec.h"
#include "platform/Files.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <cstdio>

// Measures the whole program on a desktop, beside a bare program of its kind and beside another one
// that people use. Wants a session bus and an X server that nobody else works with.
//     varno-desktop-bench VARNO BARE-TRAY [ROUNDS]

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;

constexpr int usualRounds = 15;
constexpr int laterShows = 3; // in each round
constexpr std::chrono::seconds idleTime(20);

Program varno(const QString& path)
{
    return {.path = path, .colors = 8}; // the title, the box and what is in it
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
        std::fputs("The history cannot be written.\n", stderr);
}

Program varnoWithHistory(const QString& path)
{
    Program program = varno(path);
    program.furnish = writeHistory;
    return program;
}

Program bareTray(const QString& path)
{
    return {
        .path = path,
        .arguments = {QString::number(Combination::f), QString::number(Combination::modifiers)}};
}

/// Its shortcuts are commands of its own, in a file.
void writeCopyQCommands(const QString& home)
{
    const QString folder = home + u"/.config/copyq"_s;
    QDir().mkpath(folder);
    QFile file(folder + u"/copyq-commands.ini"_s);
    if (file.open(QFile::WriteOnly))
        file.write("[Commands]\n"
                   "1\\Name=Toggle\n"
                   "1\\Command=copyq: toggle()\n"
                   "1\\IsGlobalShortcut=true\n"
                   "1\\GlobalShortcut=alt+meta+f\n"
                   "size=1\n");
}

Program copyQ()
{
    return {.path = QStandardPaths::findExecutable(u"copyq"_s),
            .opensWhen = Program::Key::pressed,
            .colors = 3,
            .furnish = writeCopyQCommands};
}

std::vector<Line> startLines(const Figures& ours, const Figures& full, const Figures& bare,
                             const Figures& copyQ)
{
    return {{.name = "start until its icon is known, against a bare one",
             .ours = ours.start.median(),
             .reference = bare.start.median(),
             .mostRatio = 1.2},
            {.name = "the same, against CopyQ",
             .ours = ours.start.median(),
             .reference = copyQ.start.median(),
             .mostRatio = 0.65},
            {.name = "the same with a history of 4 MB, against none",
             .ours = full.start.median(),
             .reference = ours.start.median(),
             .mostRatio = 1.1}};
}

std::vector<Line> memoryLines(const Figures& ours, const Figures& bare, const Figures& copyQ)
{
    return {{.name = "memory, shown and hidden, against a bare one",
             .unit = Unit::bytes,
             .ours = ours.residentSize.median(),
             .reference = bare.residentSize.median(),
             .mostRatio = 1.5},
            {.name = "the same, against CopyQ",
             .unit = Unit::bytes,
             .ours = ours.residentSize.median(),
             .reference = copyQ.residentSize.median(),
             .mostRatio = 0.45},
            {.name = "its share of it, against a bare one",
             .unit = Unit::bytes,
             .ours = ours.proportionalSize.median(),
             .reference = bare.proportionalSize.median()},
            {.name = "the same, against CopyQ",
             .unit = Unit::bytes,
             .ours = ours.proportionalSize.median(),
             .reference = copyQ.proportionalSize.median()}};
}

std::vector<Line> showLines(const Figures& ours, const Figures& bare, const Figures& copyQ)
{
    return {{.name = "key until painted, first time, against a bare one",
             .ours = ours.firstShow.median(),
             .reference = bare.firstShow.median(),
             .mostRatio = 1.6},
            {.name = "the same, against CopyQ",
             .ours = ours.firstShow.median(),
             .reference = copyQ.firstShow.median()},
            {.name = "key until painted, later, against a bare one",
             .ours = ours.laterShow.median(),
             .reference = bare.laterShow.median(),
             .mostRatio = 1.2},
            {.name = "the same, against CopyQ",
             .ours = ours.laterShow.median(),
             .reference = copyQ.laterShow.median()}};
}

std::vector<Line> idleLines(const Figures& ours, const Figures& copyQ)
{
    return {{.name = "hidden for 20 s: processor time in ticks; CopyQ",
             .unit = Unit::number,
             .ours = ours.idleTicks.median(),
             .reference = copyQ.idleTicks.median(),
             .most = 0},
            {.name = "the same: wake-ups a second; CopyQ",
             .unit = Unit::number,
             .ours = ours.idleSwitches.median(),
             .reference = copyQ.idleSwitches.median(),
             .most = 1},
            {.name = "the same: threads that wait with a timer; CopyQ",
             .unit = Unit::number,
             .ours = ours.timedWaits.median(),
             .reference = copyQ.timedWaits.median(),
             .most = 0}};
}

template <typename... Parts>
std::vector<Line> joined(Parts... parts)
{
    std::vector<Line> all;
    (all.insert(all.end(), parts.begin(), parts.end()), ...);
    return all;
}

int run(const QString& varnoPath, const QString& barePath, int rounds)
{
    StatusWatcher watcher;
    Screen screen;
    if (!watcher.isHostRegistered() || !screen.isUsable()) {
        std::fputs("varno-desktop-bench: needs a session bus without a status area, and an X server"
                   " of 24 bits with XTEST\n",
                   stderr);
        return 2;
    }
    const Installed ours(varno(varnoPath));
    const Installed bare(bareTray(barePath));
    const Installed other(copyQ());
    const Installed full(varnoWithHistory(varnoPath));
    Measurements measurements(watcher, screen, {&ours, &bare, &other, &full});
    constexpr std::size_t shown = 3; // all but the one with the history
    measurements.measureStarts(rounds);
    measurements.measureShows(shown, rounds, laterShows);
    measurements.measureIdling(shown, idleTime);
    const std::vector<Figures>& figures = measurements.figures();
    const bool met = print(joined(startLines(figures[0], figures[3], figures[1], figures[2]),
                                  memoryLines(figures[0], figures[1], figures[2]),
                                  showLines(figures[0], figures[1], figures[2]),
                                  idleLines(figures[0], figures[2])));
    return met ? 0 : 1;
}

} // namespace
} // namespace varno::bench

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3) {
        std::fputs("varno-desktop-bench VARNO BARE-TRAY [ROUNDS]\n", stderr);
        return 2;
    }
    const int rounds = arguments.size() > 3 ? arguments[3].toInt() : varno::bench::usualRounds;
    return varno::bench::run(arguments[1], arguments[2], rounds);
}
