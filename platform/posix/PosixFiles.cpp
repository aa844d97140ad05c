#include "platform/Files.h"
#include "platform/posix/FileSystem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <thread>

namespace varno {

using namespace Qt::StringLiterals;

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
    constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    return Descriptor(retried([&] { return ::open(QFile::encodeName(path).constData(), flags); }));
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
    return retried([&] { return flushToMedium(file.number()); }) == 0;
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

constexpr auto unfinishedMark = ".unfinished-"_L1;
constexpr auto damagedMark = ".damaged-"_L1;

/// Removes all files named as `path` and `mark`, whatever follows.
void removeBeside(const QString& path, QLatin1StringView mark)
{
    const QFileInfo info(path);
    const QDir folder = info.absoluteDir();
    const auto filters = QDir::Files | QDir::System | QDir::Hidden; // System: pipes and dead links
    const QStringList names = folder.entryList(filters);
    for (const QString& name : names) {
        if (name.startsWith(info.fileName() + mark))
            ::unlink(QFile::encodeName(folder.filePath(name)).constData());
    }
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

Result<QByteArray, FileError> readFile(const QString& path, qint64 limit)
{
    const Descriptor file = openForReading(path);
    if (!file)
        return errno == ENOENT ? FileError::absent : FileError::unreadable;

    struct stat status = {};
    if (::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_uid != ::geteuid() || status.st_size > limit)
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
    QByteArray temporary = QFile::encodeName(path + unfinishedMark) + "XXXXXX";
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
    struct stat status = {};
    for (int number = 1; number <= 1000; ++number) {
        const QByteArray aside = QFile::encodeName(path + damagedMark + QString::number(number));
        if (::lstat(aside.constData(), &status) == 0)
            continue;
        if (::rename(original.constData(), aside.constData()) != 0)
            return errno == ENOENT;
        syncDirectory(nativeDirectory(path));
        return true;
    }
    return false;
}

void removeFilesSetAside(const QString& path)
{
    removeBeside(path, damagedMark);
}

void removeUnfinishedFiles(const QString& path)
{
    removeBeside(path, unfinishedMark);
}

std::optional<FileStamp> fileStamp(const QString& path)
{
    struct stat status = {};
    if (::lstat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    const timespec changed = changeTime(status);
    return FileStamp{.device = static_cast<quint64>(status.st_dev),
                     .number = status.st_ino,
                     .size = status.st_size,
                     .seconds = changed.tv_sec,
                     .nanoseconds = changed.tv_nsec};
}

FolderLock::FolderLock(const QString& folder, std::chrono::milliseconds patience)
    : m_descriptor(
          ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    constexpr std::chrono::milliseconds step(10);
    for (;;) {
        m_held = m_descriptor >= 0 && ::flock(m_descriptor, LOCK_EX | LOCK_NB) == 0;
        const bool isBusy = m_descriptor >= 0 && (errno == EWOULDBLOCK || errno == EINTR);
        if (m_held || !isBusy || patience < step)
            return;
        patience -= step;
        std::this_thread::sleep_for(step);
    }
}

FolderLock::~FolderLock()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

} // namespace varno
