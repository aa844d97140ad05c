#pragma once

#include "platform/Background.h"
#include "platform/Inbox.h"
#include "platform/PreferencesStore.h"
#include "platform/linux/IniFile.h"

namespace varno {

/// Preferences in a private INI file, which other programs may write too.
class IniPreferencesStore final : public PreferencesStore {
    Q_OBJECT

public:
    /// Reads the file.
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
    void editStringArray(const QString& key, const ListEdit& edit) override;
    void remove(const QString& key) override;
    void refresh() override;
    void removeLeftovers() override;
    void waitForDone() override;

private:
    void change(const QString& key, const IniFile::Edit& edit);
    void tell(int changes);
    void take(int changes, const QByteArray& text);

    QByteArray m_text; ///< of the file, with all changes
    int m_changes = 0;
    Inbox m_inbox;
    IniFile m_file; ///< of the background, once this is made
    Lane m_lane;    ///< last, so that it ends first
};

} // namespace varno
