#pragma once

#include "core/SessionHistory.h"
#include "platform/Background.h"
#include "platform/Files.h"
#include "platform/Inbox.h"

#include <QObject>

#include <functional>
#include <optional>

namespace varno {

/// The file of saved sessions, and the copy of it in memory. Files are read and written in the
/// background, one piece of work after the other; failures are silent. Main thread only.
///
/// The file is the truth, also when other programs write it: what they saved is taken in before
/// anything is written, and what they cleared is gone. A file that cannot be read as a whole is set
/// aside before the first write takes its place.
class HistoryStore final : public QObject {
    Q_OBJECT

public:
    explicit HistoryStore(QString path = defaultPath());

    /// Finishes the pending writes.
    ~HistoryStore() override = default;
    Q_DISABLE_COPY_MOVE(HistoryStore)

    /// `Varno/session_history.json` in the user's application data. Worked out once per process;
    /// the folder is created then.
    static QString defaultPath();

    /// Sessions from before `date` count as gone. To be told before anything else.
    void setOldestKept(ReferenceSeconds date) { m_oldestKept = date; }

    /// Has the file read, if nothing has had it read yet; `wasRead` follows.
    void read();
    [[nodiscard]] bool isRead() const { return m_isRead; }

    /// What is saved, pending writes included; empty until the file has been read.
    [[nodiscard]] const SessionHistory& sessions() const { return m_sessions; }

    /// Saves `session` as the newest.
    void put(const Session& session);

    /// Empties the file, and removes all that was ever set aside or left unfinished.
    void clear();

    /// Looks whether another program has written the file. The first time, that reads it.
    void refresh();

    /// Blocks until everything started so far is done.
    void waitForDone();

Q_SIGNALS:
    /// `sessions` are known from now on. Once.
    void wasRead();

private:
    // Main thread
    void change(std::function<void()> work);
    void take(int changes, const SessionHistory& saved);

    // Background
    void start();
    bool takeIn();
    void write();
    void report(int changes);

    QString m_path;
    ReferenceSeconds m_oldestKept;
    bool m_readingStarted = false;
    bool m_isRead = false;
    int m_changes = 0;
    SessionHistory m_sessions;
    Inbox m_inbox;

    // Of the background
    SessionHistory m_saved;
    SessionHistory m_unwritten; ///< saved in vain so far
    bool m_known = false;       ///< whether the file was ever looked at
    std::optional<FileStamp> m_stamp;
    bool m_damaged = false;
    Lane m_lane; ///< last, so that it ends first
};

} // namespace varno
