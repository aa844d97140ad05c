#include "bench/desktop/Program.h"

#include <QEventLoop>
#include <QTimer>

namespace varno::bench {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds longest = 3s;
constexpr int quiet = 400; // milliseconds until what a key did has come to its end

double seconds(Clock::duration time)
{
    return std::chrono::duration<double>(time).count();
}

} // namespace

Start::Start(const Program& program, Screen& screen, StatusHost& host)
    : m_program(program)
    , m_screen(screen)
    , m_running(screen)
{
    m_running.path = program.path;
    m_running.arguments = program.arguments;
    m_running.set("HOME", program.home);
    m_running.set("TMPDIR", program.home); // where a program looks for another one of its kind
    QEventLoop loop;
    Clock::time_point begin;
    host.onItem = [&] {
        m_time = seconds(Clock::now() - begin);
        loop.quit();
    };
    QTimer::singleShot(longest, &loop, &QEventLoop::quit);
    begin = Clock::now();
    m_running.launch();
    loop.exec();
    host.onItem = [] {};
}

std::optional<double> Start::show()
{
    if (!m_screen.waitForColors(0))
        return std::nullopt;
    const Screen::Times times = m_screen.strike();
    const auto painted = m_screen.waitForColors(m_program.colors);
    m_screen.liftModifiers();
    QTest::qWait(quiet);
    m_screen.strike();
    const auto hidden = m_screen.waitForColors(0);
    m_screen.liftModifiers();
    QTest::qWait(quiet);
    if (!painted || !hidden)
        return std::nullopt;
    return seconds(*painted -
                   (m_program.opensWhen == Program::Key::lifted ? times.lifted : times.pressed));
}

} // namespace varno::bench
