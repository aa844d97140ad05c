#include "bench/desktop/ProcessFigures.h"

#include <QDir>
#include <QFile>
#include <QString>
#include <QStringList>

#include <sys/syscall.h>

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;

QString folder(qint64 process)
{
    return u"/proc/%1/"_s.arg(process);
}

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList threads(qint64 process)
{
    QStringList paths;
    const QString tasks = folder(process) + u"task/"_s;
    for (const QString& thread : QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        paths.append(tasks + thread + u'/');
    return paths;
}

/// The number that follows a name at the start of a line.
std::optional<double> field(const QByteArray& text, const QByteArray& name)
{
    for (const QByteArray& line : text.split('\n'))
        if (line.startsWith(name))
            return line.mid(name.size()).simplified().split(' ').constFirst().toDouble();
    return std::nullopt;
}

std::optional<double> kilobytes(const QByteArray& text, const QByteArray& name)
{
    const std::optional<double> size = field(text, name);
    return size ? std::optional(*size * 1024) : std::nullopt;
}

/// Which argument of a system call says how long it waits at most; -1 if none does.
int timeLimitArgument(long call)
{
    switch (call) {
    case SYS_clock_nanosleep:
    case SYS_ppoll:
#ifdef SYS_poll // an older call, which not every processor has
    case SYS_poll:
#endif
        return 2;
    case SYS_futex:
    case SYS_epoll_pwait:
#ifdef SYS_epoll_wait
    case SYS_epoll_wait:
#endif
        return 3;
    case SYS_pselect6:
#ifdef SYS_select
    case SYS_select:
#endif
        return 4;
    default:
        return -1;
    }
}

/// For a call as the system writes it: its number, its arguments. No limit is a null pointer, or
/// -1.
bool waitsWithLimit(const QByteArray& call)
{
    const QList<QByteArray> words = call.simplified().split(' ');
    const int argument = timeLimitArgument(words.constFirst().toLong());
    if (argument < 0 || words.size() < argument + 2)
        return false;
    const quint64 limit = words[argument + 1].toULongLong(nullptr, 16);
    return limit != 0 && static_cast<qint32>(limit) != -1;
}

} // namespace

std::optional<double> ProcessFigures::residentSize() const
{
    return kilobytes(contents(folder(m_process) + u"status"_s), "VmRSS:");
}

std::optional<double> ProcessFigures::proportionalSize() const
{
    return kilobytes(contents(folder(m_process) + u"smaps_rollup"_s), "Pss:");
}

std::optional<double> ProcessFigures::processorTicks() const
{
    const QByteArray line = contents(folder(m_process) + u"stat"_s);
    // The second field, the name of the program, may hold spaces.
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    constexpr int userTime = 11;
    if (fields.size() < userTime + 2)
        return std::nullopt;
    return fields[userTime].toDouble() + fields[userTime + 1].toDouble();
}

std::optional<double> ProcessFigures::voluntarySwitches() const
{
    double sum = 0;
    for (const QString& thread : threads(m_process)) {
        const auto count = field(contents(thread + u"status"_s), "voluntary_ctxt_switches:");
        if (!count)
            return std::nullopt;
        sum += *count;
    }
    return sum;
}

std::optional<double> ProcessFigures::timedWaits() const
{
    double sum = 0;
    for (const QString& thread : threads(m_process)) {
        const QByteArray call = contents(thread + u"syscall"_s);
        if (call.isEmpty())
            return std::nullopt;
        sum += waitsWithLimit(call) ? 1 : 0;
    }
    return sum;
}

} // namespace varno::bench
