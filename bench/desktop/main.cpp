#include "bench/Samples.h"
#include "bench/desktop/Measurements.h"
#include "core/SessionCodec.h"
#include "platform/Files.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <cstdio>
#include <tuple>

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
    return {.path = path,
            .arguments = {QString::number(pcKey::f), QString::number(pcKey::altSuper)}};
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

/// One line: a figure of ours beside the same one of a reference.
Line line(const char* name, Unit unit, Samples Figures::*figure, const Figures& ours,
          const Figures& reference, std::optional<double> mostRatio = {},
          std::optional<double> most = {})
{
    return {.name = name,
            .unit = unit,
            .ours = (ours.*figure).median(),
            .reference = (reference.*figure).median(),
            .mostRatio = mostRatio,
            .most = most};
}

std::vector<Line> table(const std::vector<Figures>& figures)
{
    const auto& [ours, bare, copyQ, full] =
        std::tie(figures[0], figures[1], figures[2], figures[3]);
    using F = Figures;
    constexpr Unit time = Unit::seconds;
    constexpr Unit size = Unit::bytes;
    constexpr Unit number = Unit::number;
    const std::optional<double> none;
    return {
        line("start until its icon is known, against a bare one", time, &F::start, ours, bare, 1.2),
        line("the same, against CopyQ", time, &F::start, ours, copyQ, 0.65),
        line("the same with a history of 4 MB, against none", time, &F::start, full, ours, 1.1),
        line("memory, shown and hidden, against a bare one", size, &F::residentSize, ours, bare,
             1.5),
        line("the same, against CopyQ", size, &F::residentSize, ours, copyQ, 0.45),
        line("its share of it, against a bare one", size, &F::proportionalSize, ours, bare),
        line("the same, against CopyQ", size, &F::proportionalSize, ours, copyQ),
        line("key until painted, first time, against a bare one", time, &F::firstShow, ours, bare,
             1.6),
        line("the same, against CopyQ", time, &F::firstShow, ours, copyQ),
        line("key until painted, later, against a bare one", time, &F::laterShow, ours, bare, 1.2),
        line("the same, against CopyQ", time, &F::laterShow, ours, copyQ),
        line("hidden for 20 s: processor time in ticks; CopyQ", number, &F::idleTicks, ours, copyQ,
             none, 0),
        line("the same: wake-ups a second; CopyQ", number, &F::idleSwitches, ours, copyQ, none, 1),
        line("the same: threads that wait with a timer; CopyQ", number, &F::timedWaits, ours, copyQ,
             none, 0)};
}

int run(const QString& varnoPath, const QString& barePath, int rounds)
{
    StatusHost host;
    if (!host.isRegistered()) {
        std::fputs("varno-desktop-bench: needs a session bus without a status area\n", stderr);
        return 2;
    }
    Screen screen;
    const Installed ours(varno(varnoPath));
    const Installed bare(bareTray(barePath));
    const Installed other(copyQ());
    const Installed full(varnoWithHistory(varnoPath));
    Measurements measurements(host, screen, {&ours, &bare, &other, &full});
    constexpr std::size_t shown = 3; // all but the one with the history
    measurements.measureStarts(rounds);
    measurements.measureShows(shown, rounds, laterShows);
    measurements.measureIdling(shown, idleTime);
    return print(table(measurements.figures())) ? 0 : 1;
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
