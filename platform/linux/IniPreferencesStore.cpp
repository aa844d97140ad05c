#include "platform/linux/IniPreferencesStore.h"

#include "platform/linux/IniText.h"

#include <QFileInfo>
#include <QStandardPaths>

#include <utility>

namespace varno {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

/// For another program that writes the file; the main thread waits.
constexpr auto lockPatience = 100ms;

} // namespace

IniPreferencesStore::IniPreferencesStore(const QString& path)
    : m_path(path)
    , m_folder(QFileInfo(path).absolutePath())
{
    read();
    if (const FolderLock lock(m_folder, 0ms); lock.held())
        removeUnfinishedFiles(m_path);
}

QString IniPreferencesStore::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           u"/Varno/Varno.conf"_s;
}

bool IniPreferencesStore::contains(const QString& key) const
{
    return value(key).has_value();
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
    const Value written = value(key);
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
    change(key, iniValueOf(value));
}

void IniPreferencesStore::remove(const QString& key)
{
    refresh();
    if (contains(key))
        change(key, std::nullopt);
}

void IniPreferencesStore::refresh()
{
    if (m_isInTheWay || fileStamp(m_path) != m_stamp)
        read();
}

void IniPreferencesStore::removeLeftovers()
{
    const FolderLock lock(m_folder, lockPatience);
    removeFilesSetAside(m_path);
    removeUnfinishedFiles(m_path);
}

IniPreferencesStore::Value IniPreferencesStore::value(const QString& key) const
{
    const auto unwritten = m_unwritten.constFind(key.toLatin1());
    return unwritten != m_unwritten.cend() ? *unwritten : iniValue(m_text, key.toLatin1());
}

void IniPreferencesStore::change(const QString& key, const Value& value)
{
    m_unwritten.insert(key.toLatin1(), value);
    createPrivateDirectory(m_folder);
    const FolderLock lock(m_folder, lockPatience);
    refresh();
    write();
}

void IniPreferencesStore::read()
{
    m_stamp = fileStamp(m_path); // first: what is written meanwhile has another
    const auto found = readFile(m_path, limit);
    const auto* const bytes = std::get_if<QByteArray>(&found);
    m_isInTheWay = !bytes && std::get<FileError>(found) == FileError::unreadable;
    if (!m_isInTheWay)
        m_text = bytes ? *bytes : QByteArray();
}

void IniPreferencesStore::write()
{
    QByteArray text = m_text;
    QHash<QByteArray, Value> tooLong;
    for (auto change = m_unwritten.cbegin(); change != m_unwritten.cend(); ++change) {
        QByteArray next = withIniValue(text, change.key(), change.value());
        if (next.size() <= limit)
            text = std::move(next);
        else
            tooLong.insert(change.key(), change.value());
    }
    if (m_isInTheWay && setFileAside(m_path)) {
        m_isInTheWay = false;
        m_stamp.reset();
    }
    if (m_isInTheWay || !writeFileAtomically(m_path, text))
        return;
    m_text = std::move(text);
    m_stamp = fileStamp(m_path);
    m_unwritten = std::move(tooLong);
}

} // namespace varno
