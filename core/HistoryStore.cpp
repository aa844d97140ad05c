#include "core/HistoryStore.h"

#include "core/SessionCodec.h"

#include <QFileInfo>

#include <chrono>
#include <limits>
#include <utility>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

using namespace std::chrono_literals;

/// Until a program that starts has its icon in place.
constexpr auto startingTime = 300ms;

/// For another program that writes the file; it takes a fraction of it.
constexpr auto lockPatience = 3000ms;

} // namespace

HistoryStore::HistoryStore(QString path)
    : m_path(std::move(path))
    , m_oldestKept(-std::numeric_limits<ReferenceSeconds>::infinity())
{
    m_readingTimer.setSingleShot(true);
    connect(&m_readingTimer, &QTimer::timeout, this, &HistoryStore::startReading);
}

QString HistoryStore::defaultPath()
{
    static const QString path = [] {
        const QString folder = applicationSupportDirectory() + u"/Varno"_s;
        createPrivateDirectory(folder);
        return folder + u"/session_history.json"_s;
    }();
    return path;
}

void HistoryStore::load(ReferenceSeconds oldestKept)
{
    m_oldestKept = oldestKept;
    m_readingTimer.start(startingTime);
}

void HistoryStore::startReading()
{
    m_readingTimer.stop();
    if (!std::exchange(m_readingStarted, true))
        m_background.add([this] { start(); });
}

const SessionHistory& HistoryStore::sessions()
{
    if (!m_sessions) {
        startReading();
        waitForDone();
        takeReports();
    }
    return *m_sessions;
}

void HistoryStore::put(const Session& session)
{
    if (m_sessions)
        m_sessions->put(session);
    change([this, session] {
        takeIn();
        m_saved.put(session);
        m_unwritten.put(session);
        write();
    });
}

void HistoryStore::clear()
{
    if (m_sessions)
        m_sessions = SessionHistory();
    change([this] {
        takeIn();
        m_saved = m_unwritten = SessionHistory();
        write();
        removeFilesSetAside(m_path);
        removeUnfinishedFiles(m_path);
    });
}

void HistoryStore::change(std::function<void()> work)
{
    startReading();
    m_background.add([this, work = std::move(work), number = ++m_changes] {
        const FolderLock lock(QFileInfo(m_path).path(), lockPatience);
        work();
        report(number);
    });
}

void HistoryStore::refresh()
{
    startReading();
    m_background.add([this, number = m_changes] {
        if (takeIn())
            report(number);
    });
}

void HistoryStore::waitForDone()
{
    m_background.waitForDone();
}

void HistoryStore::customEvent(QEvent*)
{
    takeReports();
}

/// A report from before a change that is still under way would undo it; another one follows.
void HistoryStore::takeReports()
{
    for (Report& report : m_reports.take()) {
        if (report.changes == m_changes)
            m_sessions = std::move(report.saved);
    }
}

void HistoryStore::start()
{
    if (const FolderLock lock(QFileInfo(m_path).path(), 0ms); lock.held())
        removeUnfinishedFiles(m_path);
    takeIn();
    report(0);
}

/// Reads the file if it is another one than it was; returns whether it was.
bool HistoryStore::takeIn()
{
    const auto stamp = fileStamp(m_path);
    if (std::exchange(m_known, true) && stamp == m_stamp)
        return false;
    m_stamp = stamp;
    const auto file = readFile(m_path, largestHistory);
    const auto* bytes = std::get_if<QByteArray>(&file);
    const bool isAbsent = !bytes && std::get<FileError>(file) == FileError::absent;
    const auto decoded = bytes ? decodeSessions(*bytes) : std::nullopt;
    m_damaged = !isAbsent && (!decoded || decoded->refused > 0);
    if (!isAbsent && !decoded)
        return false; // what is in memory is all that there is
    m_saved = SessionHistory(decoded ? decoded->sessions : QList<Session>());
    m_saved.removeOlderThan(m_oldestKept);
    m_saved.put(m_unwritten);
    return true;
}

void HistoryStore::write()
{
    if (m_damaged && !setFileAside(m_path))
        return;
    m_damaged = false;
    if (!writeFileAtomically(m_path, encodeSessions(m_saved.sessions())))
        return;
    m_stamp = fileStamp(m_path);
    m_unwritten = SessionHistory();
}

void HistoryStore::report(int changes)
{
    m_reports.send({.changes = changes, .saved = m_saved});
}

} // namespace varno
