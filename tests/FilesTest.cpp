#include "platform/Files.h"

#include "tests/Test.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <memory>

namespace {

constexpr qint64 ample = 64LL * 1024 * 1024;
constexpr uid_t nobody = 65534;

mode_t modeOf(const QString& path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777U : 0U;
}

void setMode(const QString& path, mode_t mode)
{
    QCOMPARE(::chmod(QFile::encodeName(path).constData(), mode), 0);
}

/// Root may do anything: it steps down to a user who may not, until the block ends.
auto asOrdinaryUser()
{
    const bool steppedDown = ::geteuid() == 0 && ::seteuid(nobody) == 0;
    return qScopeGuard([steppedDown] {
        if (steppedDown && ::seteuid(0) != 0)
            qFatal("Cannot become root again");
    });
}

/// Lets no file grow beyond 10000 bytes, as a full disk would, until the block ends.
auto onFullDisk()
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before = {};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit = {.rlim_cur = 10000, .rlim_max = before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    return qScopeGuard([before] { ::setrlimit(RLIMIT_FSIZE, &before); });
}

/// The bytes, or the name of the error.
QByteArray contents(const QString& path, qint64 limit = ample)
{
    const auto read = readFile(path, limit);
    if (const auto* error = std::get_if<FileError>(&read))
        return *error == FileError::absent ? "(absent)" : "(unreadable)";
    return std::get<QByteArray>(read);
}

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

} // namespace

class FilesTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;

    [[nodiscard]] QString at(const QString& name) const { return m_folder->filePath(name); }

    [[nodiscard]] QStringList names() const
    {
        return QDir(m_folder->path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

private Q_SLOTS:
    void init()
    {
        ::umask(0);
        m_folder = std::make_unique<QTemporaryDir>();
        if (::geteuid() == 0)
            QCOMPARE(::chown(QFile::encodeName(m_folder->path()).constData(), nobody, gid_t(-1)),
                     0);
    }

    void cleanup() { setMode(m_folder->path(), 0700); }

    void roundTrip()
    {
        const QString path = at(u"Größe 名.json"_s);
        write(path, "what was there before, for everybody");
        for (const QByteArray& bytes :
             {QByteArray(3 * 1024 * 1024 + 1, 'x'), QByteArray("a\0\r\n\xff", 5), QByteArray("")}) {
            QVERIFY(writeFileAtomically(path, bytes));
            QCOMPARE(contents(path), bytes);
            QCOMPARE(modeOf(path), 0600U);
            QCOMPARE(names(), QStringList{u"Größe 名.json"_s});
        }
    }

    void limitIsKept()
    {
        write(at(u"file"_s), QByteArray(1000, 'x'));
        QCOMPARE(contents(at(u"file"_s), 1000).size(), 1000);
        QCOMPARE(contents(at(u"file"_s), 999), "(unreadable)");
        // Files of the system have length 0 until they are read.
        QVERIFY(contents(u"/proc/self/status"_s).startsWith("Name:\t"));
        QCOMPARE(contents(u"/proc/self/status"_s, 10), "(unreadable)");
    }

    void unreadable()
    {
        QVERIFY(QFile::link(at(u"loop"_s), at(u"loop"_s)));
        QVERIFY(QDir().mkdir(at(u"folder"_s)));
        write(at(u"foreign"_s), "x"); // where the test is run by root
        if (::geteuid() != 0)
            setMode(at(u"foreign"_s), 0);
        QVERIFY(QFile::link(u"/proc/self/status"_s, at(u"link"_s)));
        write(at(u"forbidden"_s), "x");
        setMode(at(u"forbidden"_s), 0);
        QCOMPARE(::mkfifo(QFile::encodeName(at(u"pipe"_s)).constData(), 0666), 0);
        const auto user = asOrdinaryUser();
        for (const QString& name : {u"nothing"_s, u"nothing/below"_s})
            QCOMPARE(contents(at(name)), "(absent)");
        for (const QString& name : {u"folder"_s, u"pipe"_s, u"/dev/zero"_s, u"link"_s, u"loop"_s,
                                    u"foreign"_s, u"forbidden"_s, u"/proc/self/mem"_s}) {
            const InRow row(name);
            QCOMPARE(contents(QDir(m_folder->path()).filePath(name)), "(unreadable)");
        }
    }

    void failedWriteChangesNothing()
    {
        QVERIFY(QDir().mkdir(at(u"folder"_s)));
        const auto user = asOrdinaryUser();
        QVERIFY(writeFileAtomically(at(u"file"_s), "old"));
        const auto limit = onFullDisk();
        for (const auto& [name, length, folderMode] :
             Rows<QString, int, mode_t>{{u"file"_s, 100000, 0700U}, // too much for the disk
                                        {u"file"_s, 1, 0500U},
                                        {u"folder"_s, 1, 0700U},
                                        {u"nothing/below"_s, 1, 0700U}}) {
            const InRow row(name, length, folderMode);
            setMode(m_folder->path(), folderMode);
            QVERIFY(!writeFileAtomically(at(name), QByteArray(length, 'x')));
            QVERIFY(folderMode != 0500U || !setFileAside(at(name)));
            QCOMPARE(names(), QStringList({u"file"_s, u"folder"_s}));
            QCOMPARE(contents(at(u"file"_s)), "old");
        }
    }

    void whatIsSetAsideSurvivesTheNextWrite()
    {
        const QString path = at(u"file"_s);
        QVERIFY(setFileAside(path));
        QCOMPARE(names(), QStringList()); // there was nothing to lose
        for (const QByteArray bytes : {"first", "second"}) {
            QVERIFY(writeFileAtomically(path, bytes));
            QVERIFY(setFileAside(path));
        }
        QVERIFY(writeFileAtomically(path, "new"));
        QCOMPARE(names(), QStringList({u"file"_s, u"file.damaged-1"_s, u"file.damaged-2"_s}));
        QCOMPARE(contents(at(u"file.damaged-1"_s)), "first");
        QCOMPARE(contents(at(u"file.damaged-2"_s)), "second");
        write(at(u"file.backup"_s), "the user's own");
        write(at(u"file.unfinished-aB3dE6"_s), "half");
        removeFilesSetAside(path);
        removeUnfinishedFiles(path);
        QCOMPARE(names(), QStringList({u"file"_s, u"file.backup"_s}));
    }

    void whatIsNoPrivateFileIsSetAsideWhole()
    {
        write(at(u"target"_s), "of a link");
        const QString path = at(u"file"_s);
        QVERIFY(QDir().mkpath(path + u"/inside"_s));
        QVERIFY(setFileAside(path));
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0666), 0);
        QVERIFY(setFileAside(path));
        QVERIFY(QFile::link(at(u"target"_s), path));
        QVERIFY(writeFileAtomically(path, "new"));
        QCOMPARE(contents(path), "new");
        QCOMPARE(contents(at(u"target"_s)), "of a link");
        QVERIFY(QDir(path + u".damaged-1/inside"_s).exists());
        QCOMPARE(modeOf(path + u".damaged-2"_s), 0666U);
    }

    void createdDirectoryIsPrivate()
    {
        for (const QString& name : {u"new"_s, u"a/b/new"_s, u"c/new/"_s}) {
            createPrivateDirectory(at(name));
            QCOMPARE(modeOf(at(name)), 0700U);
        }
        setMode(at(u"new"_s), 0750); // as its owner wants it
        createPrivateDirectory(at(u"new"_s));
        QCOMPARE(modeOf(at(u"new"_s)), 0750U);
    }
};

VARNO_TEST(QCoreApplication, FilesTest)
#include "FilesTest.moc"
