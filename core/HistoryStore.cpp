#include "core/HistoryStore.h"

#include "core/SessionCodec.h"
#include "platform/Files.h"

#include <QPromise>

#include <utility>

namespace varno {
namespace {

/// More than a full history of the longest entries; beyond it a file is not ours.
constexpr qint64 largestFile = 256LL * 1024 * 1024;

} // namespace

HistoryStore::HistoryStore(QString path)
    : m_path(std::move(path))
{
    m_background.setMaxThreadCount(1);
    m_background.setThreadPriority(QThread::LowPriority);
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

QFuture<QList<Session>> HistoryStore::load()
{
    auto promise = std::make_shared<QPromise<QList<Session>>>();
    promise->start();
    m_background.start([this, promise] {
        const auto file = readFile(m_path, largestFile);
        std::optional<QList<Session>> sessions;
        if (const auto* bytes = std::get_if<QByteArray>(&file))
            sessions = decodeSessions({bytes->data(), static_cast<std::size_t>(bytes->size())});
        const auto* error = std::get_if<FileError>(&file);
        m_putAside = !sessions && !(error && *error == FileError::absent);
        promise->addResult(std::move(sessions).value_or(QList<Session>()));
        promise->finish();
    });
    return promise->future();
}

void HistoryStore::save(const QList<Session>& sessions)
{
    m_background.start([this, sessions] { write(sessions); });
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
