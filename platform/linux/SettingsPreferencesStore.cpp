#include "platform/linux/SettingsPreferencesStore.h"

#include "platform/Files.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace varno {

SettingsPreferencesStore::SettingsPreferencesStore(const QString& path)
    : m_settings(path, QSettings::IniFormat)
{
}

QString SettingsPreferencesStore::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/Varno/Varno.conf");
}

bool SettingsPreferencesStore::contains(const QString& key) const
{
    return m_settings.contains(key);
}

std::optional<bool> SettingsPreferencesStore::boolean(const QString& key) const
{
    // The file keeps words; Qt would take every word but "false" and "0" for true.
    const std::optional<QString> word = string(key);
    if (word == u"true" || word == u"1")
        return true;
    if (word == u"false" || word == u"0")
        return false;
    return std::nullopt;
}

std::optional<QString> SettingsPreferencesStore::string(const QString& key) const
{
    const QVariant value = m_settings.value(key);
    if (value.typeId() != QMetaType::QString && value.typeId() != QMetaType::Bool)
        return std::nullopt;
    return value.toString();
}

std::optional<QStringList> SettingsPreferencesStore::stringArray(const QString& key) const
{
    // In the file a list of one is a plain word, and an empty one the word for "no value".
    const QVariant value = m_settings.value(key);
    if (!value.isValid() && m_settings.contains(key))
        return QStringList();
    switch (value.typeId()) {
    case QMetaType::QString:
    case QMetaType::QStringList:
    case QMetaType::QVariantList: // with a word that holds U+0000
        return value.toStringList();
    default:
        return std::nullopt;
    }
}

void SettingsPreferencesStore::setBoolean(const QString& key, bool value)
{
    set(key, value);
}

void SettingsPreferencesStore::setString(const QString& key, const QString& value)
{
    set(key, value);
}

void SettingsPreferencesStore::setStringArray(const QString& key, const QStringList& value)
{
    set(key, value);
}

void SettingsPreferencesStore::remove(const QString& key)
{
    if (!m_settings.contains(key))
        return;
    m_settings.remove(key);
    m_settings.sync();
}

void SettingsPreferencesStore::set(const QString& key, const QVariant& value)
{
    // QSettings would make a file that everybody can read; of one that is there it keeps the mode.
    createPrivateDirectory(QFileInfo(m_settings.fileName()).absolutePath());
    static_cast<void>(
        QFile(m_settings.fileName())
            .open(QIODevice::WriteOnly | QIODevice::NewOnly, QFile::ReadOwner | QFile::WriteOwner));
    m_settings.setValue(key, value);
    m_settings.sync();
}

} // namespace varno
