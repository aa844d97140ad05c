#include "bench/desktop/Program.h"

#include <QEventLoop>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTimer>

#include <utility>

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr std::chrono::milliseconds longest = 3s;
constexpr std::chrono::milliseconds quiet = 400ms; // until what a key did has come to its end

QProcessEnvironment environment(const QString& home)
{
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert(u"HOME"_s, home);
    variables.insert(u"TMPDIR"_s, home); // where a program looks for another one of its kind
    return variables;
}

double seconds(Clock::duration time)
{
    return std::chrono::duration<double>(time).count();
}

} // namespace

void rest(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

Installed::Installed(Program program)
    : m_program(std::move(program))
{
    if (m_program.furnish)
        m_program.furnish(home());
}

RunningProgram::RunningProgram(const Installed& installed, StatusHost& host)
    : m_program(installed.program())
    , m_process(std::make_unique<QProcess>())
{
    m_process->setProcessEnvironment(environment(installed.home()));
    m_process->setProcessChannelMode(QProcess::MergedChannels);
    m_process->setStandardOutputFile(QProcess::nullDevice());
    QEventLoop loop;
    Clock::time_point begin;
    host.onItem = [&] {
        m_startTime = seconds(Clock::now() - begin);
        loop.quit();
    };
    QTimer::singleShot(longest, &loop, &QEventLoop::quit);
    begin = Clock::now();
    m_process->start(m_program.path, m_program.arguments);
    loop.exec();
    host.onItem = [] {};
}

RunningProgram::~RunningProgram()
{
    m_process->terminate();
    if (!m_process->waitForFinished(static_cast<int>(longest.count())))
        m_process->kill();
    m_process->waitForFinished();
}

qint64 RunningProgram::process() const
{
    return m_process->processId();
}

std::optional<double> RunningProgram::show(Screen& screen) const
{
    if (!screen.waitForColors(0, longest))
        return std::nullopt;
    const Screen::Times times = screen.strike();
    const auto painted = screen.waitForColors(m_program.colors, longest);
    screen.liftModifiers();
    rest(quiet);
    static_cast<void>(screen.strike());
    const auto hidden = screen.waitForColors(0, longest);
    screen.liftModifiers();
    rest(quiet);
    if (!painted || !hidden)
        return std::nullopt;
    return seconds(*painted -
                   (m_program.opensWhen == Program::Key::lifted ? times.lifted : times.pressed));
}

} // namespace varno::bench
