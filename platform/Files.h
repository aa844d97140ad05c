#pragma once

#include <QByteArray>
#include <QString>

#include <variant>

namespace varno {

enum class FileError { absent, unreadable };

/// The folder for the user's application data, not the application's own folder in it.
QString applicationSupportDirectory();

/// Creates `path` and its missing parents, `path` itself readable by the user alone.
void createPrivateDirectory(const QString& path);

/// The whole of a regular file of at most `limit` bytes. Anything else that is there, however it
/// resists, is `unreadable`.
std::variant<QByteArray, FileError> readFile(const QString& path, qint64 limit);

/// Replaces the file by one that holds `bytes`, readable by the user alone. After a failure, or a
/// loss of power at any moment, the file holds either all of the old bytes or all of the new.
bool writeFileAtomically(const QString& path, const QByteArray& bytes);

/// Gives the contents of `path` a second, unused name beside it, which survives the next
/// `writeFileAtomically`. Returns whether nothing can be lost by that any more.
bool setFileAside(const QString& path);

} // namespace varno
