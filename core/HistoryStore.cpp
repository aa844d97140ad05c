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

/// For another program that writes the file; it takes a fraction of it.
constexpr auto lockPatience = 3000ms;

} // namespace

HistoryStore::HistoryStore(QString path)
    : m_path(std::move(path))
    , m_oldestKept(-std::numeric_limits<ReferenceSeconds>::infinity())
{
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

void HistoryStore::read()
{
    if (!std::exchange(m_readingStarted, true))
        m_lane.add([this](const std::stop_token&) { start(); });
}

void HistoryStore::put(const Session& session)
{
    if (m_isRead)
        m_sessions.put(session);
    change([this, session] {
        takeIn();
        m_saved.put(session);
        m_unwritten.put(session);
        write();
    });
}

void HistoryStore::clear()
{
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
    read();
    m_lane.add([this, work = std::move(work), number = ++m_changes](const std::stop_token&) {
        const FolderLock lock(QFileInfo(m_path).path(), lockPatience);
        work();
        report(number);
    });
}

void HistoryStore::refresh()
{
    read();
    m_lane.add([this, number = m_changes](const std::stop_token&) {
        if (takeIn())
            report(number);
    });
}

void HistoryStore::waitForDone()
{
    m_lane.waitForDone();
}

/// What is told from before a change that is still under way would undo it; more follows.
void HistoryStore::take(int changes, const SessionHistory& saved)
{
    if (changes != m_changes)
        return;
    m_sessions = saved;
    if (!std::exchange(m_isRead, true))
        Q_EMIT wasRead();
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
    m_inbox.address().send([this, changes, saved = m_saved] { take(changes, saved); });
}

} // namespace varno
