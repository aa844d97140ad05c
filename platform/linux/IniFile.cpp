#include "platform/linux/IniFile.h"

#include "platform/linux/IniText.h"

#include <QFileInfo>

#include <utility>

namespace varno {
namespace {

using namespace std::chrono_literals;

/// For another program that writes the file; it takes a fraction of it.
constexpr auto lockPatience = 3000ms;

} // namespace

IniFile::IniFile(const QString& path)
    : m_path(path)
    , m_folder(QFileInfo(path).absolutePath())
{
    read();
}

QByteArray IniFile::text() const
{
    QByteArray text = m_text;
    for (auto change = m_unwritten.cbegin(); change != m_unwritten.cend(); ++change)
        text = withIniValue(text, change.key(), change.value());
    return text;
}

void IniFile::refresh()
{
    if (m_isInTheWay || fileStamp(m_path) != m_stamp)
        read();
}

void IniFile::change(const QByteArray& key, const Edit& edit)
{
    createPrivateDirectory(m_folder);
    const FolderLock lock(m_folder, lockPatience);
    refresh();
    const auto unwritten = m_unwritten.constFind(key);
    m_unwritten.insert(
        key, edit(unwritten == m_unwritten.cend() ? iniValue(m_text, key) : unwritten.value()));
    write();
}

void IniFile::removeUnfinished()
{
    if (const FolderLock lock(m_folder, 0ms); lock.held())
        removeUnfinishedFiles(m_path);
}

void IniFile::removeLeftovers()
{
    const FolderLock lock(m_folder, lockPatience);
    removeFilesSetAside(m_path);
    removeUnfinishedFiles(m_path);
}

void IniFile::read()
{
    m_stamp = fileStamp(m_path); // first: what is written meanwhile has another
    const auto found = readFile(m_path, limit);
    const auto* const bytes = std::get_if<QByteArray>(&found);
    m_isInTheWay = !bytes && std::get<FileError>(found) == FileError::unreadable;
    if (!m_isInTheWay)
        m_text = bytes ? *bytes : QByteArray();
}

void IniFile::write()
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
