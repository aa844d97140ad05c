#include "platform/Files.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <csignal>
#include <memory>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 ample = 64LL * 1024 * 1024;
constexpr uid_t nobody = 65534;

QByteArray native(const QString& path)
{
    return QFile::encodeName(path);
}

/// The permission bits of a file, 0 if there is none.
mode_t modeOf(const QString& path)
{
    struct stat status = {};
    return ::stat(native(path).constData(), &status) == 0 ? status.st_mode & 07777U : 0U;
}

/// Root may do anything: it steps down to a user who may not, for as long as this lives.
class OrdinaryUser {
public:
    OrdinaryUser()
    {
        if (::geteuid() == 0)
            m_steppedDown = ::seteuid(nobody) == 0;
    }
    ~OrdinaryUser()
    {
        if (m_steppedDown && ::seteuid(0) != 0)
            qFatal("Cannot become root again");
    }
    Q_DISABLE_COPY_MOVE(OrdinaryUser)

private:
    bool m_steppedDown = false;
};

/// Lets no file grow beyond `bytes`, as a full disk would, for as long as this lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit = {.rlim_cur = bytes, .rlim_max = m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    Q_DISABLE_COPY_MOVE(FileSizeLimit)

private:
    void (*m_handler)(int);
    rlimit m_before = {};
};

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "(no file)";
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
    [[nodiscard]] QString at(const QString& name) const
    {
        return QDir(m_folder->path()).filePath(name);
    }

    [[nodiscard]] QStringList names() const
    {
        return QDir(m_folder->path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<QTemporaryDir> m_folder;

private slots:
    void init()
    {
        ::umask(0);
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        if (::geteuid() == 0)
            QCOMPARE(::chown(native(m_folder->path()).constData(), nobody, gid_t(-1)), 0);
    }

    void cleanup()
    {
        ::chmod(native(m_folder->path()).constData(), S_IRWXU);
        m_folder.reset();
    }

    void roundTrip_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("any bytes") << QByteArray("a\0\r\n\xff", 5);
        QTest::newRow("long") << QByteArray(3 * 1024 * 1024 + 1, 'x');
    }

    void roundTrip()
    {
        QFETCH(QByteArray, bytes);
        const QString path = at(u"Größe 名.json"_s);
        QVERIFY(writeFileAtomically(path, "what was there before"));
        QVERIFY(writeFileAtomically(path, bytes));
        const auto read = readFile(path, ample);
        QVERIFY(std::holds_alternative<QByteArray>(read));
        QCOMPARE(std::get<QByteArray>(read), bytes);
        QCOMPARE(names(), QStringList{u"Größe 名.json"_s});
    }

    void writtenFileIsPrivate()
    {
        write(at(u"open"_s), "old");
        QCOMPARE(modeOf(at(u"open"_s)), 0666U);
        for (const QString& name : {u"new"_s, u"open"_s}) {
            QVERIFY(writeFileAtomically(at(name), "secret"));
            QCOMPARE(modeOf(at(name)), 0600U);
        }
    }

    void createdDirectoryIsPrivate_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("beside others") << u"new"_s;
        QTest::newRow("with parents") << u"a/b/new"_s;
        QTest::newRow("with a slash at the end") << u"a/new/"_s;
    }

    void createdDirectoryIsPrivate()
    {
        QFETCH(QString, name);
        createPrivateDirectory(at(name));
        QVERIFY(QDir(at(name)).exists());
        QCOMPARE(modeOf(at(name)), 0700U);
    }

    void whatIsThereIsNoDirectoryToCreate()
    {
        QVERIFY(QDir().mkdir(at(u"folder"_s)));
        ::chmod(native(at(u"folder"_s)).constData(), 0750);
        write(at(u"folder/file"_s), "kept");
        createPrivateDirectory(at(u"folder"_s));
        QCOMPARE(modeOf(at(u"folder"_s)), 0750U);

        createPrivateDirectory(at(u"folder/file"_s));
        createPrivateDirectory(at(u"folder/file/below"_s));
        QCOMPARE(contents(at(u"folder/file"_s)), "kept");
    }

    void limitIsKept()
    {
        write(at(u"file"_s), QByteArray(1000, 'x'));
        QVERIFY(std::holds_alternative<QByteArray>(readFile(at(u"file"_s), 1000)));
        QVERIFY(readFile(at(u"file"_s), 999) == decltype(readFile({}, 0))(FileError::unreadable));

        QFile sparse(at(u"sparse"_s));
        QVERIFY(sparse.open(QIODevice::WriteOnly) && sparse.resize(1LL << 40));
        QVERIFY(readFile(sparse.fileName(), ample) ==
                decltype(readFile({}, 0))(FileError::unreadable));
    }

    void lengthNeedNotBeKnown()
    {
        // Files of the system have length 0 until they are read.
        const auto read = readFile(u"/proc/self/status"_s, ample);
        QVERIFY(std::holds_alternative<QByteArray>(read));
        QVERIFY(std::get<QByteArray>(read).startsWith("Name:\tFilesTest"));
        QVERIFY(std::get<QByteArray>(read).endsWith('\n'));
        QVERIFY(readFile(u"/proc/self/status"_s, 10) ==
                decltype(readFile({}, 0))(FileError::unreadable));
    }

    void unreadable_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("isAbsent");
        QTest::newRow("nothing") << u"nothing"_s << true;
        QTest::newRow("in no folder") << u"nothing/below"_s << true;
        QTest::newRow("dangling link") << u"dangling"_s << true;
        QTest::newRow("folder") << u"folder"_s << false;
        QTest::newRow("pipe") << u"pipe"_s << false;
        QTest::newRow("socket") << u"socket"_s << false;
        QTest::newRow("device") << u"/dev/zero"_s << false;
        QTest::newRow("link to itself") << u"loop"_s << false;
        QTest::newRow("forbidden") << u"forbidden"_s << false;
        QTest::newRow("in a forbidden folder") << u"closed/file"_s << false;
        QTest::newRow("failing half way") << u"/proc/self/mem"_s << false;
    }

    void unreadable()
    {
        QFETCH(QString, name);
        QFETCH(bool, isAbsent);
        QVERIFY(QFile::link(at(u"nowhere"_s), at(u"dangling"_s)));
        QVERIFY(QFile::link(at(u"loop"_s), at(u"loop"_s)));
        QVERIFY(QDir().mkdir(at(u"folder"_s)));
        QVERIFY(QDir().mkdir(at(u"closed"_s)));
        write(at(u"closed/file"_s), "x");
        write(at(u"forbidden"_s), "x");
        QCOMPARE(::chmod(native(at(u"closed"_s)).constData(), 0), 0);
        QCOMPARE(::chmod(native(at(u"forbidden"_s)).constData(), 0), 0);
        QCOMPARE(::mkfifo(native(at(u"pipe"_s)).constData(), 0666), 0);
        QCOMPARE(::mknod(native(at(u"socket"_s)).constData(), S_IFSOCK | 0666, 0), 0);

        const FileError expected = isAbsent ? FileError::absent : FileError::unreadable;
        {
            const OrdinaryUser user;
            const auto read = readFile(at(name), ample);
            QVERIFY(std::holds_alternative<FileError>(read));
            QCOMPARE(std::get<FileError>(read), expected);
        }
        QCOMPARE(::chmod(native(at(u"closed"_s)).constData(), 0700), 0);
    }

    void failedWriteChangesNothing_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<mode_t>("folderMode");
        QTest::newRow("full disk") << u"file"_s << mode_t(0700);
        QTest::newRow("read-only folder") << u"file"_s << mode_t(0500);
        QTest::newRow("folder in its place") << u"folder"_s << mode_t(0700);
        QTest::newRow("no folder") << u"nothing/below"_s << mode_t(0700);
        QTest::newRow("no name") << u""_s << mode_t(0700);
    }

    void failedWriteChangesNothing()
    {
        QFETCH(QString, name);
        QFETCH(mode_t, folderMode);
        QVERIFY(QDir().mkdir(at(u"folder"_s)));
        const OrdinaryUser user;
        QVERIFY(writeFileAtomically(at(u"file"_s), "old"));
        const QStringList before = names();
        QCOMPARE(::chmod(native(m_folder->path()).constData(), folderMode), 0);
        {
            const FileSizeLimit limit(10000);
            QVERIFY(
                !writeFileAtomically(name.isEmpty() ? name : at(name), QByteArray(100000, 'x')));
        }
        QCOMPARE(names(), before);
        QCOMPARE(contents(at(u"file"_s)), "old");
    }

    void linkIsReadThroughAndReplaced()
    {
        write(at(u"target"_s), "old");
        QVERIFY(QFile::link(at(u"target"_s), at(u"link"_s)));
        const auto read = readFile(at(u"link"_s), ample);
        QVERIFY(std::holds_alternative<QByteArray>(read));
        QCOMPARE(std::get<QByteArray>(read), "old");

        QVERIFY(setFileAside(at(u"link"_s)));
        QVERIFY(writeFileAtomically(at(u"link"_s), "new"));
        QCOMPARE(contents(at(u"link"_s)), "new");
        QCOMPARE(contents(at(u"target"_s)), "old");
        QCOMPARE(contents(at(u"link.damaged-1"_s)), "old");
    }

    void whatIsSetAsideSurvivesTheNextWrite()
    {
        const QString path = at(u"file"_s);
        for (const char* bytes : {"first", "second", "third"}) {
            QVERIFY(writeFileAtomically(path, bytes));
            QVERIFY(setFileAside(path));
            QCOMPARE(contents(path), QByteArray(bytes));
        }
        QVERIFY(writeFileAtomically(path, "new"));
        QCOMPARE(names(), (QStringList{u"file"_s, u"file.damaged-1"_s, u"file.damaged-2"_s,
                                       u"file.damaged-3"_s}));
        QCOMPARE(contents(at(u"file.damaged-1"_s)), "first");
        QCOMPARE(contents(at(u"file.damaged-2"_s)), "second");
        QCOMPARE(contents(at(u"file.damaged-3"_s)), "third");
        QCOMPARE(contents(path), "new");
    }

    void nothingToSetAside()
    {
        QVERIFY(setFileAside(at(u"nothing"_s)));
        QVERIFY(setFileAside(at(u"nothing/below"_s)));
        QCOMPARE(names(), QStringList());
    }

    void cannotSetAside()
    {
        QVERIFY(QDir().mkdir(at(u"folder"_s)));
        QVERIFY(!setFileAside(at(u"folder"_s)));
        QCOMPARE(names(), QStringList{u"folder"_s});

        write(at(u"file"_s), "x");
        QCOMPARE(::chmod(native(m_folder->path()).constData(), 0500), 0);
        const OrdinaryUser user;
        QVERIFY(!setFileAside(at(u"file"_s)));
        QCOMPARE(names(), (QStringList{u"file"_s, u"folder"_s}));
    }

    void ownFileNeedNotBeReadable()
    {
        const OrdinaryUser user;
        write(at(u"file"_s), "x");
        QCOMPARE(::chmod(native(at(u"file"_s)).constData(), 0), 0);
        QVERIFY(setFileAside(at(u"file"_s)));
        QVERIFY(writeFileAtomically(at(u"file"_s), "new"));
        QCOMPARE(::chmod(native(at(u"file.damaged-1"_s)).constData(), 0400), 0);
        QCOMPARE(contents(at(u"file.damaged-1"_s)), "x");
    }

    void isCopiedWhereItCannotBeLinked_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("long") << QByteArray(300001, 'x');
    }

    void isCopiedWhereItCannotBeLinked()
    {
        if (::geteuid() != 0 || contents(u"/proc/sys/fs/protected_hardlinks"_s).trimmed() != "1")
            QSKIP("Needs root, and a system where nobody may link the files of others");
        QFETCH(QByteArray, bytes);
        write(at(u"file"_s), bytes);
        ::chmod(native(at(u"file"_s)).constData(), 0644);
        write(at(u"file.damaged-1"_s), "earlier");
        QVERIFY(QFile::link(at(u"nowhere"_s), at(u"file.damaged-2"_s)));
        const OrdinaryUser user;
        QVERIFY(setFileAside(at(u"file"_s)));
        QVERIFY(writeFileAtomically(at(u"file"_s), "new"));
        QCOMPARE(contents(at(u"file.damaged-1"_s)), "earlier");
        QCOMPARE(contents(at(u"file.damaged-3"_s)), bytes);
        QCOMPARE(modeOf(at(u"file.damaged-3"_s)), 0600U);
    }

    void halfACopyIsNotKept()
    {
        if (::geteuid() != 0 || contents(u"/proc/sys/fs/protected_hardlinks"_s).trimmed() != "1")
            QSKIP("Needs root, and a system where nobody may link the files of others");
        write(at(u"file"_s), QByteArray(100000, 'x'));
        ::chmod(native(at(u"file"_s)).constData(), 0644);
        const OrdinaryUser user;
        const FileSizeLimit limit(10000);
        QVERIFY(!setFileAside(at(u"file"_s)));
        QCOMPARE(names(), QStringList{u"file"_s});
    }
};

QTEST_GUILESS_MAIN(FilesTest)
#include "FilesTest.moc"
