#include "platform/Files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace varno {
namespace {

class Descriptor {
public:
    explicit Descriptor(int number)
        : m_number(number)
    {
    }
    ~Descriptor()
    {
        if (m_number >= 0)
            ::close(m_number);
    }
    Q_DISABLE_COPY_MOVE(Descriptor)

    explicit operator bool() const { return m_number >= 0; }
    [[nodiscard]] int number() const { return m_number; }

private:
    int m_number;
};

/// Repeats `call` while a signal interrupts it.
template <typename Call>
auto retried(Call call)
{
    for (;;) {
        const auto result = call();
        if (result >= 0 || errno != EINTR)
            return result;
    }
}

bool writeWhole(const Descriptor& file, const QByteArray& bytes)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const auto written = retried([&] {
            return ::write(file.number(), bytes.data() + done, size_t(bytes.size() - done));
        });
        if (written < 0)
            return false;
        done += written;
    }
    return retried([&] { return ::fsync(file.number()); }) == 0;
}

/// Makes a rename in `directory` survive a loss of power. Some file systems cannot; they say so.
void syncDirectory(const QByteArray& directory)
{
    const Descriptor folder(::open(directory.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder)
        retried([&] { return ::fsync(folder.number()); });
}

QByteArray nativeDirectory(const QString& path)
{
    return QFile::encodeName(QFileInfo(path).absolutePath());
}

} // namespace

QString applicationSupportDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
}

void createPrivateDirectory(const QString& path)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    ::mkdir(QFile::encodeName(path).constData(), S_IRWXU);
}

std::variant<QByteArray, FileError> readFile(const QString& path, qint64 limit)
{
    // Without O_NONBLOCK a named pipe would hold us until somebody writes to it.
    const Descriptor file(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file)
        return errno == ENOENT ? FileError::absent : FileError::unreadable;

    struct stat status = {};
    if (::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > limit)
        return FileError::unreadable;

    QByteArray bytes(status.st_size, Qt::Uninitialized);
    qsizetype done = 0;
    while (done < bytes.size()) {
        const auto count = retried([&] {
            return ::read(file.number(), bytes.data() + done, size_t(bytes.size() - done));
        });
        if (count < 0)
            return FileError::unreadable;
        if (count == 0)
            break;
        done += count;
    }
    bytes.truncate(done);
    return bytes;
}

bool writeFileAtomically(const QString& path, const QByteArray& bytes)
{
    QByteArray temporary = QFile::encodeName(path) + ".XXXXXX";
    const Descriptor file(::mkostemp(temporary.data(), O_CLOEXEC)); // mode 0600
    if (!file)
        return false;
    if (!writeWhole(file, bytes) ||
        ::rename(temporary.constData(), QFile::encodeName(path).constData()) != 0) {
        ::unlink(temporary.constData());
        return false;
    }
    syncDirectory(nativeDirectory(path));
    return true;
}

bool setFileAside(const QString& path)
{
    const QByteArray original = QFile::encodeName(path);
    for (int number = 1; number <= 1000; ++number) {
        const QString aside = QStringLiteral("%1.damaged-%2").arg(path).arg(number);
        // A link needs no space on a full disk and no right to read, whatever the size.
        if (::link(original.constData(), QFile::encodeName(aside).constData()) == 0)
            return true;
        if (errno == ENOENT)
            return true;
        if (errno != EEXIST)
            return QFile::copy(path, aside); // a file system without links
    }
    return false;
}

} // namespace varno
