#pragma once

#include "bench/desktop/Screen.h"
#include "tests/StatusHost.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>

class QProcess;

namespace varno::bench {

/// A program with an icon in the status area and one window, which Alt+Super+F opens and hides.
struct Program {
    enum class Key { lifted, pressed };

    QString path;
    QStringList arguments = {};
    Key opensWhen = Key::lifted;
    /// How many colours there are in the middle of its window when its content is painted: one is
    /// enough for an empty window only.
    std::size_t colors = 1;
    /// Lays out its home folder, once.
    std::function<void(const QString& home)> furnish = {};
};

/// A program in a home folder of its own, which keeps what the program left there from one start to
/// the next; started once beforehand, so that caches are filled.
class Installed {
public:
    explicit Installed(Program program);

    [[nodiscard]] const Program& program() const { return m_program; }
    [[nodiscard]] QString home() const { return m_home.path(); }

private:
    Program m_program;
    QTemporaryDir m_home;
};

/// A start of it, from the moment that the system is told to. Ends with this object.
class RunningProgram {
public:
    RunningProgram(const Installed& installed, StatusHost& host);
    ~RunningProgram();
    Q_DISABLE_COPY_MOVE(RunningProgram)

    /// In seconds until its icon was known to the status area; nothing if it never was.
    [[nodiscard]] std::optional<double> startTime() const { return m_startTime; }
    [[nodiscard]] qint64 process() const;

    /// In seconds from the key until its window was painted; it is hidden again afterwards. Nothing
    /// if it was not painted, or did not hide.
    [[nodiscard]] std::optional<double> show(Screen& screen) const;

private:
    const Program& m_program;
    std::unique_ptr<QProcess> m_process;
    std::optional<double> m_startTime;
};

/// Runs the event loop for that long.
void rest(std::chrono::milliseconds time);

} // namespace varno::bench
