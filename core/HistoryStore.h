#pragma once

#include "core/Mailbox.h"
#include "core/SessionHistory.h"
#include "core/TaskQueue.h"
#include "platform/Files.h"

#include <QObject>
#include <QTimer>

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
public:
    explicit HistoryStore(QString path = defaultPath());

    /// Finishes the pending writes.
    ~HistoryStore() override = default;
    Q_DISABLE_COPY_MOVE(HistoryStore)

    /// `Varno/session_history.json` in the user's application data. Worked out once per process;
    /// the folder is created then.
    static QString defaultPath();

    /// Has the file read a moment later, when the start of the program is over. Sessions from
    /// before `oldestKept` count as gone.
    void load(ReferenceSeconds oldestKept);

    /// What is saved, pending writes included. Waits for the file if it has not been read yet.
    [[nodiscard]] const SessionHistory& sessions();

    /// Saves `session` as the newest.
    void put(const Session& session);

    /// Empties the file, and removes all that was ever set aside or left unfinished.
    void clear();

    /// Looks whether another program has written the file.
    void refresh();

    /// Blocks until everything started so far is done.
    void waitForDone();

protected:
    void customEvent(QEvent* event) override;

private:
    struct Report {
        int changes = 0; ///< that were asked for before it
        SessionHistory saved;
    };

    // Main thread
    void startReading();
    void change(std::function<void()> work);
    void takeReports();

    // Background
    void start();
    bool takeIn();
    void write();
    void report(int changes);

    QString m_path;
    ReferenceSeconds m_oldestKept;
    QTimer m_readingTimer;
    bool m_readingStarted = false;
    int m_changes = 0;
    std::optional<SessionHistory> m_sessions; ///< absent until the file has been read
    Mailbox<Report> m_reports{this};

    // Of the background
    SessionHistory m_saved;
    SessionHistory m_unwritten; ///< saved in vain so far
    bool m_known = false;       ///< whether the file was ever looked at
    std::optional<FileStamp> m_stamp;
    bool m_damaged = false;
    TaskQueue m_background; ///< last, so that it ends first
};

} // namespace varno
