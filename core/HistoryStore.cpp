#include "core/HistoryStore.h"

#include "core/SessionCodec.h"
#include "platform/Files.h"

#include <chrono>
#include <utility>

namespace varno {
namespace {

/// More than a full history of the longest entries; beyond it a file is not ours.
constexpr qint64 largestFile = 256LL * 1024 * 1024;

/// Until a program that starts has its icon in place.
constexpr std::chrono::milliseconds startingTime(300);

} // namespace

HistoryStore::HistoryStore(QString path)
    : m_path(std::move(path))
{
}

QString HistoryStore::defaultPath()
{
    static const QString path = [] {
        const QString folder = applicationSupportDirectory() + QStringLiteral("/Varno");
        createPrivateDirectory(folder);
        return folder + QStringLiteral("/session_history.json");
    }();
    return path;
}

std::shared_future<QList<Session>> HistoryStore::load()
{
    auto loaded = std::async(std::launch::deferred, [this] { return read(); }).share();
    QObject::connect(
        &m_readingTimer, &QTimer::timeout, &m_readingTimer,
        [this, loaded] { m_background.add([loaded] { loaded.wait(); }); },
        Qt::SingleShotConnection); // which keeps nothing of what was read
    m_readingTimer.setSingleShot(true);
    m_readingTimer.start(startingTime);
    return loaded;
}

QList<Session> HistoryStore::read()
{
    const auto file = readFile(m_path, largestFile);
    std::optional<QList<Session>> sessions;
    if (const auto* bytes = std::get_if<QByteArray>(&file))
        sessions = decodeSessions(*bytes);
    const auto* error = std::get_if<FileError>(&file);
    m_putAside = !sessions && !(error && *error == FileError::absent);
    return std::move(sessions).value_or(QList<Session>());
}

void HistoryStore::save(const QList<Session>& sessions)
{
    m_background.add([this, sessions] { write(sessions); });
}

void HistoryStore::waitForDone()
{
    m_background.waitForDone();
}

void HistoryStore::write(const QList<Session>& sessions)
{
    if (m_putAside && !setFileAside(m_path))
        return;
    m_putAside = false;
    writeFileAtomically(m_path, encodeSessions(sessions));
}

} // namespace varno
