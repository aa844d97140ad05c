#include "platform/linux/SettingsPreferencesStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

#include <memory>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

constexpr uid_t nobody = 65534;

QString writtenFile(const QTemporaryDir& folder, const QByteArray& text)
{
    QFile file(folder.filePath(u"Varno.conf"_s));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("Cannot write the file of the test");
    return file.fileName();
}

} // namespace

class SettingsPreferencesStoreTest : public QObject {
    Q_OBJECT

private:
    [[nodiscard]] QString path() const { return m_folder->filePath(u"below/Varno.conf"_s); }

    /// What another process would read now: of one file, a process keeps one copy in memory.
    [[nodiscard]] std::unique_ptr<SettingsPreferencesStore> readAgain() const
    {
        static int number = 0;
        const QString copy = m_folder->filePath(u"copy-%1.conf"_s.arg(++number));
        return QFile::copy(path(), copy) ? std::make_unique<SettingsPreferencesStore>(copy)
                                         : nullptr;
    }

    std::unique_ptr<QTemporaryDir> m_folder;

private slots:
    void init()
    {
        ::umask(0);
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
    }

    void absentAtFirst()
    {
        const SettingsPreferencesStore store(path());
        QVERIFY(!store.boolean(u"a"_s));
        QVERIFY(!store.string(u"a"_s));
        QVERIFY(!store.stringArray(u"a"_s));
        QVERIFY(!QFile::exists(path()));
    }

    void booleanRoundTrip()
    {
        SettingsPreferencesStore store(path());
        for (const bool value : {true, false}) {
            store.setBoolean(u"a"_s, value);
            QCOMPARE(store.boolean(u"a"_s), std::optional(value));
            const auto again = readAgain();
            QVERIFY(again);
            QCOMPARE(again->boolean(u"a"_s), std::optional(value));
        }
    }

    void stringRoundTrip_data()
    {
        QTest::addColumn<QString>("value");
        for (const QString& value :
             {u""_s, u"plain"_s, u"  blanks  "_s, u"a, b"_s, u"a;b=c#d"_s, u"\"quoted\" \\n \\"_s,
              u"two\r\nlines\tand\n"_s, u"Größe 名前 العربية"_s, u"🦊 \U0001F9EA"_s, u"true"_s,
              u"0"_s, u"42"_s, u"@Invalid()"_s, u"@ByteArray(x)"_s, u"@@"_s, u"%41%%"_s,
              u"[General]"_s, QString(QChar(0)) + u"zero"_s, QString(10000, u'x')})
            QTest::newRow(qPrintable(value.left(20))) << value;
    }

    void stringRoundTrip()
    {
        QFETCH(QString, value);
        SettingsPreferencesStore store(path());
        store.setString(u"a"_s, value);
        store.setString(u"after"_s, u"intact"_s);
        QCOMPARE(store.string(u"a"_s), std::optional(value));
        const auto again = readAgain();
        QVERIFY(again);
        QCOMPARE(again->string(u"a"_s), std::optional(value));
        QCOMPARE(again->string(u"after"_s), std::optional(u"intact"_s));
    }

    void listRoundTrip_data()
    {
        QTest::addColumn<QStringList>("value");
        QTest::newRow("empty") << QStringList();
        QTest::newRow("an empty word") << QStringList{u""_s};
        QTest::newRow("two empty words") << QStringList{u""_s, u""_s};
        QTest::newRow("one") << QStringList{u"one"_s};
        QTest::newRow("one with a comma") << QStringList{u"a, b"_s};
        QTest::newRow("one like a code") << QStringList{u"@Invalid()"_s};
        QTest::newRow("one like a boolean") << QStringList{u"true"_s};
        QTest::newRow("many") << QStringList{u"a, b"_s,       u"\"q\" \\"_s,     u" blanks "_s,
                                             u"l1\nl2\r\n"_s, u"Größe 🦊"_s, u""_s,
                                             u"@Invalid()"_s, u"a;b"_s,          u"a, b"_s};
    }

    void listRoundTrip()
    {
        QFETCH(QStringList, value);
        SettingsPreferencesStore store(path());
        store.setStringArray(u"a"_s, {u"before"_s, u"that"_s});
        store.setStringArray(u"a"_s, value);
        QCOMPARE(store.stringArray(u"a"_s), std::optional(value));
        const auto again = readAgain();
        QVERIFY(again);
        QCOMPARE(again->stringArray(u"a"_s), std::optional(value));
    }

    void otherTypesReadAsAbsent_data()
    {
        QTest::addColumn<QByteArray>("word");
        QTest::addColumn<std::optional<bool>>("boolean");
        QTest::addColumn<bool>("isString");
        QTest::addColumn<bool>("isList");
        QTest::newRow("true") << QByteArray("true") << std::optional(true) << true << true;
        QTest::newRow("1") << QByteArray("1") << std::optional(true) << true << true;
        QTest::newRow("false") << QByteArray("false") << std::optional(false) << true << true;
        const std::optional<bool> none;
        QTest::newRow("nonsense") << QByteArray("banana") << none << true << true;
        QTest::newRow("number") << QByteArray("17.5") << none << true << true;
        QTest::newRow("nothing") << QByteArray("") << none << true << true;
        QTest::newRow("list") << QByteArray("true, false") << none << false << true;
        QTest::newRow("empty list") << QByteArray("@Invalid()") << none << false << true;
        QTest::newRow("bytes") << QByteArray("@ByteArray(true)") << none << false << false;
        QTest::newRow("point") << QByteArray("@Point(1 2)") << none << false << false;
        // Qt cannot tell it from the word for an empty list.
        QTest::newRow("damaged object")
            << QByteArray("@Variant(\\0\\0\\0\\x7f)") << none << false << true;
    }

    void otherTypesReadAsAbsent()
    {
        QFETCH(QByteArray, word);
        QFETCH(std::optional<bool>, boolean);
        QFETCH(bool, isString);
        QFETCH(bool, isList);
        const SettingsPreferencesStore store(
            writtenFile(*m_folder, "[General]\na=" + word + "\nb=intact\n"));
        QCOMPARE(store.boolean(u"a"_s), boolean);
        QCOMPARE(store.string(u"a"_s).has_value(), isString);
        QCOMPARE(store.stringArray(u"a"_s).has_value(), isList);
        QCOMPARE(store.string(u"b"_s), std::optional(u"intact"_s));
    }

    void garbageIsReplaced_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("bytes") << QByteArray("\0\xff\xfe[[[\n=\n\"", 11);
        QTest::newRow("open quote") << QByteArray("[General]\na=\"open\n");
        QTest::newRow("no group") << QByteArray("one\ntwo\n]=[");
        QTest::newRow("another format") << QByteArray("{\"a\": [true");
        QTest::newRow("long line") << QByteArray(1000000, '[');
    }

    void garbageIsReplaced()
    {
        QFETCH(QByteArray, text);
        const QString file = writtenFile(*m_folder, text);
        {
            SettingsPreferencesStore store(file);
            QVERIFY(!store.boolean(u"valid"_s));
            store.setBoolean(u"valid"_s, true);
            QCOMPARE(store.boolean(u"valid"_s), std::optional(true));
        }
        const QString copy = m_folder->filePath(u"copy.conf"_s);
        QVERIFY(QFile::copy(file, copy));
        QCOMPARE(SettingsPreferencesStore(copy).boolean(u"valid"_s), std::optional(true));
    }

    void fileIsPrivate()
    {
        SettingsPreferencesStore store(path());
        for (int i = 0; i < 2; ++i) {
            store.setString(u"a"_s, QString::number(i));
            struct stat status = {};
            QCOMPARE(::stat(QFile::encodeName(path()).constData(), &status), 0);
            QCOMPARE(status.st_mode & 07777U, 0600U);
        }
    }

    void whatCannotBeWrittenIsKeptInMemory_data()
    {
        QTest::addColumn<mode_t>("folderMode");
        QTest::addColumn<mode_t>("fileMode");
        QTest::newRow("file that cannot be read") << mode_t(0500) << mode_t(0);
        QTest::newRow("read-only") << mode_t(0500) << mode_t(0400);
        QTest::newRow("closed folder") << mode_t(0) << mode_t(0600);
    }

    void whatCannotBeWrittenIsKeptInMemory()
    {
        QFETCH(mode_t, folderMode);
        QFETCH(mode_t, fileMode);
        const QString file = writtenFile(*m_folder, "[General]\na=old\n");
        const QByteArray folder = QFile::encodeName(m_folder->path());
        const bool isRoot = ::geteuid() == 0;
        if (isRoot) {
            QCOMPARE(::chown(folder.constData(), nobody, gid_t(-1)), 0);
            QCOMPARE(::chown(QFile::encodeName(file).constData(), nobody, gid_t(-1)), 0);
        }
        ::chmod(QFile::encodeName(file).constData(), fileMode);
        ::chmod(folder.constData(), folderMode);
        if (isRoot)
            QCOMPARE(::seteuid(nobody), 0);
        {
            SettingsPreferencesStore store(file);
            store.setString(u"a"_s, u"new"_s);
            QCOMPARE(store.string(u"a"_s), std::optional(u"new"_s));
        }
        if (isRoot)
            QCOMPARE(::seteuid(0), 0);
        ::chmod(folder.constData(), 0700);
        ::chmod(QFile::encodeName(file).constData(), 0600);
        QFile kept(file);
        QVERIFY(kept.open(QIODevice::ReadOnly));
        QCOMPARE(kept.readAll(), "[General]\na=old\n");
        QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden),
                 QStringList{u"Varno.conf"_s});
    }

    void folderInItsPlaceIsNoFile()
    {
        QVERIFY(QDir().mkpath(path()));
        SettingsPreferencesStore store(path());
        store.setBoolean(u"a"_s, true);
        QVERIFY(QFileInfo(path()).isDir());
    }

    void defaultPathIsInTheConfigurationFolder()
    {
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_folder->path()));
        QCOMPARE(SettingsPreferencesStore::defaultPath(),
                 m_folder->filePath(u"Varno/Varno.conf"_s));
        qunsetenv("XDG_CONFIG_HOME");
    }
};

QTEST_GUILESS_MAIN(SettingsPreferencesStoreTest)
#include "SettingsPreferencesStoreTest.moc"
