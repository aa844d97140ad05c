#include "platform/Files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>

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

Descriptor openForReading(const QString& path)
{
    // Without O_NONBLOCK a named pipe would hold us until somebody writes to it.
    return Descriptor(retried([&] {
        return ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    }));
}

ssize_t readSome(const Descriptor& file, char* bytes, qsizetype length)
{
    return retried([&] { return ::read(file.number(), bytes, static_cast<size_t>(length)); });
}

bool writeWhole(const Descriptor& file, const char* bytes, qsizetype length)
{
    for (qsizetype done = 0; done < length;) {
        const auto written = retried([&] {
            return ::write(file.number(), bytes + done, static_cast<size_t>(length - done));
        });
        if (written < 0)
            return false;
        done += written;
    }
    return true;
}

bool sync(const Descriptor& file)
{
    return retried([&] { return ::fsync(file.number()); }) == 0;
}

bool copyWhole(const Descriptor& from, const Descriptor& to)
{
    std::array<char, 64UL * 1024> buffer = {};
    for (;;) {
        const ssize_t count = readSome(from, buffer.data(), buffer.size());
        if (count <= 0)
            return count == 0 && sync(to);
        if (!writeWhole(to, buffer.data(), count))
            return false;
    }
}

/// Copies a file to one that must not be there yet, readable by the user alone.
bool copyFile(const QString& path, const QByteArray& copy)
{
    const Descriptor from = openForReading(path);
    struct stat status = {};
    if (!from || ::fstat(from.number(), &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    const Descriptor to(
        ::open(copy.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!to)
        return false;
    if (copyWhole(from, to))
        return true;
    ::unlink(copy.constData());
    return false;
}

/// Makes a rename in `directory` survive a loss of power. Some file systems cannot; they say so.
void syncDirectory(const QByteArray& directory)
{
    const Descriptor folder(::open(directory.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder)
        sync(folder);
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
    const QString plain = QDir::cleanPath(path); // without a slash at its end
    QDir().mkpath(QFileInfo(plain).absolutePath());
    ::mkdir(QFile::encodeName(plain).constData(), S_IRWXU);
}

std::variant<QByteArray, FileError> readFile(const QString& path, qint64 limit)
{
    const Descriptor file = openForReading(path);
    if (!file)
        return errno == ENOENT ? FileError::absent : FileError::unreadable;

    struct stat status = {};
    if (::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > limit)
        return FileError::unreadable;

    // The length is but a hint: some files of the system have none, and others may grow meanwhile.
    constexpr qsizetype spare = 64; // shows the end, and lets parsers look ahead without a copy
    QByteArray bytes(status.st_size + spare, Qt::Uninitialized);
    qsizetype done = 0;
    for (;;) {
        const ssize_t count = readSome(file, bytes.data() + done, bytes.size() - done);
        if (count < 0 || done + count > limit)
            return FileError::unreadable;
        done += count;
        if (count == 0)
            break;
        if (done == bytes.size())
            bytes.resize(2 * done + 4096);
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
    if (!writeWhole(file, bytes.constData(), bytes.size()) || !sync(file) ||
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
        const QByteArray aside = original + ".damaged-" + QByteArray::number(number);
        // A link needs no space on a full disk and no right to read, whatever the size.
        bool done = ::link(original.constData(), aside.constData()) == 0;
        if (!done && errno == ENOENT)
            return true;
        if (!done && errno == EEXIST)
            continue;
        done = done || copyFile(path, aside); // where there are no links
        if (done)
            syncDirectory(nativeDirectory(path));
        return done;
    }
    return false;
}

} // namespace varno
