#include "platform/linux/IniPreferencesStore.h"

#include "tests/TestMain.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

#include <sys/stat.h>
#include <unistd.h>

using namespace varno;
using namespace Qt::StringLiterals;

class IniPreferencesStoreTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    int m_number = 0;

    /// In a folder that is not there yet.
    QString unusedPath() { return m_folder.filePath(u"%1/Varno.conf"_s.arg(++m_number)); }

    static void write(const QString& path, const QByteArray& text)
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("Cannot write the file of the test");
    }

    static QByteArray contents(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
    }

    QString fileOf(const QByteArray& text)
    {
        QString path = m_folder.filePath(u"%1.conf"_s.arg(++m_number));
        write(path, text);
        return path;
    }

private Q_SLOTS:
    void lists_data()
    {
        QTest::addColumn<QStringList>("value");
        QTest::newRow("empty") << QStringList();
        QTest::newRow("two empty words") << QStringList{u""_s, u""_s};
        for (const QString& word :
             {u""_s, u"plain"_s, u"  blanks  "_s, u"a, b"_s, u"a;b=c#d"_s, u"\"quoted\" \\n \\"_s,
              u"two\r\nlines\tand\n"_s, u"\x1f\x7f!"_s, QChar(0x1f) + u"0Fg"_s, QChar(0) + u"7z"_s,
              u"Größe 名前 العربية 🦊"_s, u"true"_s, u"@Invalid()"_s, u"@String(x)"_s,
              u"@@"_s, u"%41%%"_s, u"[General]"_s, u"it's?"_s, QString(10000, u'x')}) {
            QTest::addRow("one: %s", qPrintable(word.left(20).simplified())) << QStringList{word};
            QTest::addRow("two: %s", qPrintable(word.left(20).simplified()))
                << QStringList{word, u"b, c"_s};
        }
    }

    void lists()
    {
        QFETCH(QStringList, value);
        const QString path = unusedPath();
        IniPreferencesStore store(path);
        QVERIFY(!store.contains(u"a"_s));
        store.setStringArray(u"a"_s, value);
        QCOMPARE(store.stringArray(u"a"_s), std::optional(value));
        QCOMPARE(IniPreferencesStore(path).stringArray(u"a"_s), std::optional(value));
        QCOMPARE(store.string(u"a"_s).has_value(), value.size() == 1);

        // Earlier versions read and write through QSettings.
        QSettings earlier(path, QSettings::IniFormat);
        QCOMPARE(earlier.value(u"a"_s).toStringList(), value);
        earlier.setValue(u"b"_s, value);
        earlier.setValue(u"flag"_s, true);
        earlier.sync();
        store.refresh();
        for (const QString& key : {u"a"_s, u"b"_s})
            QCOMPARE(store.stringArray(key), std::optional(value));
        QCOMPARE(store.boolean(u"flag"_s), std::optional(true));
    }

    void booleans()
    {
        const std::optional<bool> none;
        using Row = std::pair<QByteArray, std::optional<bool>>;
        for (const auto& [word, expected] :
             {Row("true", true), Row("1", true), Row("false", false), Row("0", false),
              Row("banana", none), Row("", none), Row("true, true", none)})
            QCOMPARE(IniPreferencesStore(fileOf("a=" + word)).boolean(u"a"_s), expected);
    }

    void texts_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("words");
        const QString none = u"(none)"_s;
        QTest::newRow("bytes") << QByteArray("a=@ByteArray(x)") << none;
        QTest::newRow("number in a list") << QByteArray("a=b, @Variant(\\0)") << none;
        QTest::newRow("other group") << QByteArray("[x]\na=x") << none;
        QTest::newRow("open quote") << QByteArray("b=\"\na=x") << none;
        QTest::newRow("blanks, comment") << QByteArray("\ta = x , \ty; no") << u"x|y"_s;
        QTest::newRow("comments") << QByteArray("; a=1\n ;a=2\n\ta=x") << u"x"_s;
        QTest::newRow("escapes") << QByteArray("a=\\x62\\141n\\x61\"na\"\\z") << u"banana"_s;
        QTest::newRow("the last one") << QByteArray("a=1\n[x]\na=2\n[GENERAL]\na=x") << u"x"_s;
        QTest::newRow("mark, CRLF") << QByteArray("\xEF\xBB\xBF[General]\r\na=x\r\n") << u"x"_s;
    }

    void texts()
    {
        QFETCH(QByteArray, text);
        const IniPreferencesStore store(fileOf(text));
        const auto words = store.stringArray(u"a"_s);
        QTEST(words ? words->join(u'|') : u"(none)"_s, "words");
    }

    void everythingElseStays()
    {
        const QByteArray text = "\xEF\xBB\xBF"
                                "; mine\r\n[x]\r\na=1\r\n[General]\r\na=%1 ; why\r\n"
                                "b = @Variant(\\0) \r\nc=2\r\n\r\n\"open";
        const QString path = fileOf(text);
        IniPreferencesStore store(path);
        store.setBoolean(u"a"_s, true);
        QCOMPARE(contents(path), QByteArray(text).replace("%1 ", "true"));
        store.remove(u"c"_s);
        store.remove(u"b"_s);
        QCOMPARE(contents(path),
                 text.left(text.indexOf("b =")).replace("%1 ", "true") + "\r\n\"open");
        store.remove(u"a"_s);
        store.setBoolean(u"a"_s, false);
        store.setBoolean(u"b"_s, false);
        QVERIFY(contents(path).startsWith("\xEF\xBB\xBF[General]\nb=false\na=false\n; mine"));
    }

    void garbageIsBypassed()
    {
        for (const QByteArray& text :
             {QByteArray("\0\xff\xfe[[[\n=\n\"", 11), QByteArray("[General]\na=\"open\n"),
              QByteArray("{\"a\": [true"), QByteArray(1000000, '[')}) {
            const QString path = fileOf(text);
            IniPreferencesStore(path).setBoolean(u"valid"_s, true);
            QCOMPARE(IniPreferencesStore(path).boolean(u"valid"_s), std::optional(true));
        }
    }

    void whatIsNoPrivateFileIsSetAside_data()
    {
        QTest::addColumn<int>("kind");
        int kind = 0;
        for (const char* name : {"pipe", "link", "folder", "of another user", "too long"})
            QTest::newRow(name) << kind++;
    }

    void whatIsNoPrivateFileIsSetAside()
    {
        QFETCH(int, kind);
        const QString target = fileOf("a=target");
        const QString path = kind == 3 || kind == 4 ? fileOf("a=bad") : unusedPath();
        const QByteArray name = QFile::encodeName(path);
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        if (kind == 0)
            QCOMPARE(::mkfifo(name.constData(), 0600), 0);
        else if (kind == 1)
            QVERIFY(QFile::link(target, path));
        else if (kind == 2)
            QVERIFY(QDir().mkdir(path));
        else if (kind == 3)
            QVERIFY(::chown(name.constData(), 65534, gid_t(-1)) == 0 || // where root runs the test
                    ::chmod(name.constData(), 0) == 0);
        else
            QVERIFY(QFile::resize(path, 50LL * 1024 * 1024));

        IniPreferencesStore store(path);
        QVERIFY(!store.contains(u"a"_s));
        store.setString(u"b"_s, u"good"_s);
        QCOMPARE(contents(path), "[General]\nb=good\n");
        QCOMPARE(contents(target), "a=target");
        struct stat status = {};
        QCOMPARE(::lstat((name + ".damaged-1").constData(), &status), 0);
        store.removeLeftovers(); // but for folders
        QCOMPARE(::lstat((name + ".damaged-1").constData(), &status), kind == 2 ? 0 : -1);
    }

    void programsOnOneFileKeepWhatEachSets()
    {
        const QString path = unusedPath();
        IniPreferencesStore one(path);
        IniPreferencesStore other(path);
        one.setString(u"a"_s, u"1"_s);
        other.setString(u"b"_s, u"2"_s);
        one.setString(u"c"_s, u"3"_s);
        QCOMPARE(one.string(u"b"_s), u"2"_s);
        other.refresh();
        for (const QString& key : {u"a"_s, u"b"_s, u"c"_s})
            QVERIFY(other.contains(key));
    }

    void whatCannotBeWrittenIsKept()
    {
        const QString path = unusedPath();
        write(QFileInfo(path).path(), "no folder");
        IniPreferencesStore store(path);
        store.setString(u"long"_s, QString(IniFile::limit, u'x'));
        store.setString(u"a"_s, u"1"_s);
        QCOMPARE(store.string(u"a"_s), u"1"_s);
        QVERIFY(QFile::remove(QFileInfo(path).path()));
        store.setString(u"b"_s, u"2"_s);
        const IniPreferencesStore again(path);
        QVERIFY(again.contains(u"a"_s) && again.contains(u"b"_s) && !again.contains(u"long"_s));
        QVERIFY(store.contains(u"long"_s));
    }

    void fileIsPrivateAndLeavesNothingBeside()
    {
        ::umask(0);
        const QString path = unusedPath();
        QDir folder = QFileInfo(path).dir();
        QVERIFY(folder.mkpath(u"."_s));
        write(path + u".lock"_s, "1\nvarno\nanother host\n"); // what a lock file leaves
        write(path + u".unfinished-aB3dE6"_s, "what a killed write leaves");
        IniPreferencesStore store(path);
        for (int i = 0; i < 2; ++i) {
            store.setString(u"a"_s, QString::number(i));
            struct stat status = {};
            QCOMPARE(::stat(QFile::encodeName(path).constData(), &status), 0);
            QCOMPARE(status.st_mode & 07777U, 0600U);
        }
        QCOMPARE(folder.entryList(QDir::Files),
                 QStringList({u"Varno.conf"_s, u"Varno.conf.lock"_s}));
    }
};

VARNO_TEST(QCoreApplication, IniPreferencesStoreTest)
#include "IniPreferencesStoreTest.moc"
