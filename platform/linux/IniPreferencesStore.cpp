#include "platform/linux/IniPreferencesStore.h"

#include "platform/linux/IniText.h"

#include <QStandardPaths>

namespace varno {

using namespace Qt::StringLiterals;

IniPreferencesStore::IniPreferencesStore(const QString& path)
    : m_file(path)
{
    m_text = m_file.text();
    m_lane.add([this](const std::stop_token&) { m_file.removeUnfinished(); });
}

QString IniPreferencesStore::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           u"/Varno/Varno.conf"_s;
}

bool IniPreferencesStore::contains(const QString& key) const
{
    return iniValue(m_text, key.toLatin1()).has_value();
}

std::optional<bool> IniPreferencesStore::boolean(const QString& key) const
{
    const std::optional<QString> word = string(key);
    if (word == u"true" || word == u"1")
        return true;
    if (word == u"false" || word == u"0")
        return false;
    return std::nullopt;
}

std::optional<QString> IniPreferencesStore::string(const QString& key) const
{
    const auto words = stringArray(key);
    return words && words->size() == 1 ? std::optional(words->constFirst()) : std::nullopt;
}

std::optional<QStringList> IniPreferencesStore::stringArray(const QString& key) const
{
    const IniFile::Value written = iniValue(m_text, key.toLatin1());
    return written ? iniWords(*written) : std::nullopt;
}

void IniPreferencesStore::setBoolean(const QString& key, bool value)
{
    setString(key, value ? u"true"_s : u"false"_s);
}

void IniPreferencesStore::setString(const QString& key, const QString& value)
{
    setStringArray(key, {value});
}

void IniPreferencesStore::setStringArray(const QString& key, const QStringList& value)
{
    change(key, [written = iniValueOf(value)](const IniFile::Value&) { return written; });
}

void IniPreferencesStore::editStringArray(const QString& key, const ListEdit& edit)
{
    change(key, [edit](const IniFile::Value& written) {
        const auto words = written ? iniWords(*written) : std::nullopt;
        return iniValueOf(edit(words.value_or(QStringList())));
    });
}

void IniPreferencesStore::remove(const QString& key)
{
    if (contains(key))
        change(key, [](const IniFile::Value&) { return IniFile::Value(); });
}

void IniPreferencesStore::refresh()
{
    m_lane.add([this, number = m_changes](const std::stop_token&) {
        m_file.refresh();
        tell(number);
    });
}

void IniPreferencesStore::removeLeftovers()
{
    m_lane.add([this](const std::stop_token&) { m_file.removeLeftovers(); });
}

void IniPreferencesStore::waitForDone()
{
    m_lane.waitForDone();
}

/// Here at once, and then again in the file.
void IniPreferencesStore::change(const QString& key, const IniFile::Edit& edit)
{
    const QByteArray name = key.toLatin1();
    m_text = withIniValue(m_text, name, edit(iniValue(m_text, name)));
    m_lane.add([this, name, edit, number = ++m_changes](const std::stop_token&) {
        m_file.change(name, edit);
        tell(number);
    });
}

/// In the background.
void IniPreferencesStore::tell(int changes)
{
    m_inbox.address().send([this, changes, text = m_file.text()] { take(changes, text); });
}

/// What is told from before a change that is still under way would undo it; more follows.
void IniPreferencesStore::take(int changes, const QByteArray& text)
{
    if (changes != m_changes || text == m_text)
        return;
    m_text = text;
    Q_EMIT changed();
}

} // namespace varno
