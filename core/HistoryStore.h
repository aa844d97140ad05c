#pragma once

#include "core/Session.h"
#include "core/TaskQueue.h"

#include <QTimer>

#include <future>

namespace varno {

/// The file of saved sessions. Work is done in the background, one piece after the other; failures
/// are silent. Main thread only.
///
/// A file that is there but is no history is put aside before the first save takes its place.
class HistoryStore {
public:
    explicit HistoryStore(QString path = defaultPath());

    /// Finishes the pending writes.
    ~HistoryStore() = default;
    Q_DISABLE_COPY_MOVE(HistoryStore)

    /// `Varno/session_history.json` in the user's application data. Worked out once per process;
    /// the folder is created then.
    static QString defaultPath();

    /// What the file holds; empty when there is no readable history. It is read a moment later,
    /// when the start of the program is over; whoever wants it before that reads it there and then.
    [[nodiscard]] std::shared_future<QList<Session>> load();

    /// Starts replacing the file's contents; the last list handed over is the one that stays.
    void save(const QList<Session>& sessions);

    /// Blocks until everything started so far is done.
    void waitForDone();

private:
    [[nodiscard]] QList<Session> read();
    void write(const QList<Session>& sessions);

    QString m_path;
    QTimer m_readingTimer;
    bool m_putAside = false; ///< of those who read and write, one after the other
    TaskQueue m_background;  ///< last, so that it ends first
};

} // namespace varno
