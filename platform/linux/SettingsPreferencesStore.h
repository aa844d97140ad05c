#pragma once

#include "platform/PreferencesStore.h"

#include <QSettings>

namespace varno {

/// Preferences in an INI file.
class SettingsPreferencesStore final : public PreferencesStore {
public:
    explicit SettingsPreferencesStore(const QString& path);

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

private:
    void set(const QString& key, const QVariant& value);

    QSettings m_settings;
};

} // namespace varno
