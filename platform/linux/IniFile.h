#pragma once

#include "platform/Files.h"

#include <QHash>
#include <QString>

#include <functional>
#include <optional>

namespace varno {

/// A private INI file, which other programs may write too. What is no such file is ignored, and set
/// aside when there is something to write. One thread at a time; the calls block.
class IniFile {
public:
    /// As the file has it; nothing for a key that is not there.
    using Value = std::optional<QByteArray>;
    using Edit = std::function<Value(const Value&)>;

    /// Of the file, in bytes: 15 searches as long as a field takes, 32767 letters of at most 4.
    static constexpr qsizetype limit = 2LL * 1024 * 1024;

    /// Reads the file.
    explicit IniFile(const QString& path);

    /// What was read last, with all changes.
    [[nodiscard]] QByteArray text() const;

    /// Reads the file if it is another one than it was.
    void refresh();

    /// Changes the value that the file has by then. What cannot be written is kept, and tried again
    /// with the next change.
    void change(const QByteArray& key, const Edit& edit);

    /// Removes what killed writes left behind, unless somebody is writing now.
    void removeUnfinished();

    /// Removes what was set aside or left unfinished.
    void removeLeftovers();

private:
    void read();
    void write();

    QString m_path;
    QString m_folder;
    QByteArray m_text; ///< as it was read or written last
    std::optional<FileStamp> m_stamp;
    bool m_isInTheWay = false; ///< what is no file of ours
    QHash<QByteArray, Value> m_unwritten;
};

} // namespace varno
