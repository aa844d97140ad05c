#pragma once

#include "bench/desktop/Screen.h"
#include "tests/RunningProgram.h"
#include "tests/StatusHost.h"

namespace varno::bench {

/// A program with an icon in the status area and one window, which Alt+Super+F opens and hides.
struct Program {
    enum class Key { lifted, pressed };

    const char* name;
    QString path;
    QStringList arguments = {};
    Key opensWhen = Key::lifted;
    /// How many colours there are in the middle of its window when its content is painted: one is
    /// enough for an empty window only.
    std::size_t colors = 1;
    /// Keeps what the program left there from one start to the next.
    QString home = {};
};

/// A start of it, from the moment that the system is told to. Ends with this object.
class Start {
public:
    Start(const Program& program, Screen& screen, StatusHost& host);
    ~Start() { m_running.end(); }
    Q_DISABLE_COPY_MOVE(Start)

    /// In seconds until its icon was known to the status area; nothing if it never was.
    [[nodiscard]] std::optional<double> time() const { return m_time; }
    [[nodiscard]] qint64 process() const { return m_running.id(); }

    /// In seconds from the key until its window was painted; it is hidden again afterwards. Nothing
    /// if it was not painted, or did not hide.
    std::optional<double> show();

private:
    const Program& m_program;
    Screen& m_screen;
    RunningProgram m_running;
    std::optional<double> m_time;
};

} // namespace varno::bench
