#pragma once

#include "platform/Result.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <optional>

namespace varno {

// Private files: regular ones of this user, not reached through a link. Whatever else stands in the
// place of one is never read and never written to. The functions are for any thread, and block.

enum class FileError { absent, unreadable };

/// The folder for the user's application data, not the application's own folder in it.
QString applicationSupportDirectory();

/// Creates `path` and its missing parents, `path` itself readable by the user alone.
void createPrivateDirectory(const QString& path);

/// The whole of a private file of at most `limit` bytes. Anything else that is there, however it
/// resists, is `unreadable`.
Result<QByteArray, FileError> readFile(const QString& path, qint64 limit);

/// Replaces what is at `path`, a link itself and not its target, by a file that holds `bytes`,
/// readable by the user alone. After a failure, or a loss of power at any moment, the file holds
/// either all of the old bytes or all of the new.
bool writeFileAtomically(const QString& path, const QByteArray& bytes);

/// Moves whatever is at `path` to an unused name beside it, `path` and ".damaged-1" or a higher
/// number. Returns whether `path` is free now.
bool setFileAside(const QString& path);

/// Removes what was set aside from `path`, but for folders.
void removeFilesSetAside(const QString& path);

/// Removes what writes to `path` left behind when their process was killed. For holders of a
/// FolderLock: it takes away the ground from under a write that is going on.
void removeUnfinishedFiles(const QString& path);

/// Tells a file from the one that a later `writeFileAtomically` puts in its place.
struct FileStamp {
    quint64 device = 0;
    quint64 number = 0;
    qint64 size = 0;
    qint64 seconds = 0;
    qint64 nanoseconds = 0;

    bool operator==(const FileStamp&) const = default;
};

/// Nothing when there is no file.
std::optional<FileStamp> fileStamp(const QString& path);

/// Keeps out everybody else who locks the same folder, in this process too, for as long as it
/// lives. Leaves nothing in the folder, and goes with its process.
class FolderLock {
public:
    /// Waits for at most `patience`, and goes on without the lock then: a program that hangs must
    /// not keep the others from saving.
    FolderLock(const QString& folder, std::chrono::milliseconds patience);
    ~FolderLock();
    Q_DISABLE_COPY_MOVE(FolderLock)

    [[nodiscard]] bool held() const { return m_held; }

private:
    int m_descriptor;
    bool m_held = false;
};

} // namespace varno
