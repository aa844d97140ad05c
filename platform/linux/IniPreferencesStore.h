#pragma once

#include "platform/Files.h"
#include "platform/PreferencesStore.h"

#include <QHash>

namespace varno {

/// Preferences in a private INI file, which other programs may write too. What is no such file is
/// ignored, and set aside when there is something to write.
class IniPreferencesStore final : public PreferencesStore {
public:
    /// Of the file, in bytes: 15 searches as long as a field takes, 32767 letters of at most 4.
    static constexpr qsizetype limit = 2LL * 1024 * 1024;

    explicit IniPreferencesStore(const QString& path);

    /// `Varno/Varno.conf` in the user's configuration folder.
    static QString defaultPath();

    [[nodiscard]] bool contains(const QString& key) const override;
    [[nodiscard]] std::optional<bool> boolean(const QString& key) const override;
    [[nodiscard]] std::optional<QString> string(const QString& key) const override;
    [[nodiscard]] std::optional<QStringList> stringArray(const QString& key) const override;

    void setBoolean(const QString& key, bool value) override;
    void setString(const QString& key, const QString& value) override;
    void setStringArray(const QString& key, const QStringList& value) override;
    void remove(const QString& key) override;
    void refresh() override;
    void removeLeftovers() override;

private:
    using Value = std::optional<QByteArray>; ///< as the file has it

    [[nodiscard]] Value value(const QString& key) const;
    void change(const QString& key, const Value& value);
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
