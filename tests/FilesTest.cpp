#include "platform/Files.h"

#include "tests/FileContents.h"
#include "tests/Test.h"

#include <QScopeGuard>
#include <QTemporaryDir>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <memory>

namespace {

constexpr qint64 ample = 64LL * 1024 * 1024;

mode_t modeOf(const QString& path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777U : 0U;
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
QByteArray outcome(const QString& path, qint64 limit = ample)
{
    const auto read = readFile(path, limit);
    if (const auto* error = std::get_if<FileError>(&read))
        return *error == FileError::absent ? "(absent)" : "(unreadable)";
    return std::get<QByteArray>(read);
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
    }

    void roundTrip()
    {
        const QString path = at(u"Größe 名.json"_s);
        setContents(path, "what was there before, for everybody");
        for (const QByteArray& bytes :
             {QByteArray(3 * 1024 * 1024 + 1, 'x'), QByteArray("a\0\r\n\xff", 5), QByteArray("")}) {
            QVERIFY(writeFileAtomically(path, bytes));
            QCOMPARE(outcome(path), bytes);
            QCOMPARE(modeOf(path), 0600U);
            QCOMPARE(names(), QStringList{u"Größe 名.json"_s});
        }
    }

    void limitIsKept()
    {
        setContents(at(u"file"_s), QByteArray(1000, 'x'));
        QCOMPARE(outcome(at(u"file"_s), 1000).size(), 1000);
        QCOMPARE(outcome(at(u"file"_s), 999), "(unreadable)");
        // Files of the system have length 0 until they are read.
        QVERIFY(outcome(u"/proc/self/status"_s).startsWith("Name:\t"));
        QCOMPARE(outcome(u"/proc/self/status"_s, 10), "(unreadable)");
    }

    void unreadable()
    {
        QVERIFY(QDir().mkdir(at(u"folder"_s)));
        setContents(at(u"file"_s), "x");
        QVERIFY(QFile::link(at(u"file"_s), at(u"link"_s)));
        QCOMPARE(::mkfifo(QFile::encodeName(at(u"pipe"_s)).constData(), 0666), 0);
        for (const QString& name : {u"nothing"_s, u"nothing/below"_s})
            QCOMPARE(outcome(at(name)), "(absent)");
        QString foreign = u"/etc/passwd"_s;
        if (::geteuid() == 0) { // whose own that is
            constexpr uid_t nobody = 65534;
            foreign = at(u"foreign"_s);
            setContents(foreign, "x");
            QCOMPARE(::chown(QFile::encodeName(foreign).constData(), nobody, gid_t(-1)), 0);
        }
        for (const QString& path : {at(u"folder"_s), at(u"pipe"_s), at(u"link"_s),
                                    at(u"file/below"_s), u"/dev/zero"_s, foreign}) {
            const InRow row(path);
            QCOMPARE(outcome(path), "(unreadable)");
        }
    }

    void failedWriteChangesNothing()
    {
        QVERIFY(QDir().mkdir(at(u"folder"_s)));
        QVERIFY(writeFileAtomically(at(u"file"_s), "old"));
        const auto limit = onFullDisk();
        for (const auto& [name, length] :
             Rows<QString, int>{{u"file"_s, 100000}, {u"folder"_s, 1}, {u"nothing/below"_s, 1}}) {
            const InRow row(name);
            QVERIFY(!writeFileAtomically(at(name), QByteArray(length, 'x')));
            QCOMPARE(names(), QStringList({u"file"_s, u"folder"_s}));
            QCOMPARE(outcome(at(u"file"_s)), "old");
        }
        QVERIFY(!setFileAside(at(u"file/below"_s)));
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
        QCOMPARE(outcome(at(u"file.damaged-1"_s)), "first");
        QCOMPARE(outcome(at(u"file.damaged-2"_s)), "second");
        setContents(at(u"file.backup"_s), "the user's own");
        setContents(at(u"file.unfinished-aB3dE6"_s), "half");
        removeFilesSetAside(path);
        removeUnfinishedFiles(path);
        QCOMPARE(names(), QStringList({u"file"_s, u"file.backup"_s}));
    }

    void whatIsNoPrivateFileIsLeftWhole()
    {
        const QString path = at(u"file"_s);
        setContents(path + u"/inside"_s, "x");
        QVERIFY(setFileAside(path));
        QCOMPARE(outcome(path + u".damaged-1/inside"_s), "x");
        setContents(at(u"target"_s), "of a link");
        QVERIFY(QFile::link(at(u"target"_s), path));
        QVERIFY(writeFileAtomically(path, "new"));
        QCOMPARE(outcome(path), "new");
        QCOMPARE(outcome(at(u"target"_s)), "of a link");
    }

    void createdDirectoryIsPrivate()
    {
        for (const QString& name : {u"new"_s, u"a/b/new"_s, u"c/new/"_s}) {
            createPrivateDirectory(at(name));
            QCOMPARE(modeOf(at(name)), 0700U);
        }
    }
};

VARNO_TEST(QCoreApplication, FilesTest)
#include "FilesTest.moc"
