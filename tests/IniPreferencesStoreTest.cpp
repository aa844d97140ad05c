#include "platform/linux/IniPreferencesStore.h"

#include "tests/Table.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QSignalSpy>
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

    /// Until all is written and told.
    static void settle(IniPreferencesStore& store)
    {
        store.waitForDone();
        QCoreApplication::sendPostedEvents();
    }

    QString fileOf(const QByteArray& text)
    {
        QString path = m_folder.filePath(u"%1.conf"_s.arg(++m_number));
        write(path, text);
        return path;
    }

private Q_SLOTS:
    void lists()
    {
        const QString path = unusedPath();
        IniPreferencesStore store(path);
        QVERIFY(!store.contains(u"a"_s));
        for (const QStringList& value :
             {QStringList(), QStringList{u""_s}, QStringList{u""_s, u""_s},
              QStringList{u"  blanks  "_s, u"a, b"_s}, QStringList{u"a;b=c#d"_s},
              QStringList{u"\"quoted\" \\n \\"_s, u"two\r\nlines\tand\n"_s},
              QStringList{QChar(0x1f) + u"0Fg"_s, QChar(0) + u"7z"_s, u"Größe 名前 🦊"_s},
              QStringList{u"@Invalid()"_s}, QStringList{u"@String(x)"_s, u"@@"_s, u"%41%%"_s},
              QStringList{u"[General]"_s, u"it's?"_s, QString(10000, u'x')}}) {
            const InRow row(value);
            store.setStringArray(u"a"_s, value);
            QCOMPARE(store.stringArray(u"a"_s), std::optional(value));
            QCOMPARE(IniPreferencesStore(path).stringArray(u"a"_s), std::optional(value));
            QCOMPARE(store.string(u"a"_s).has_value(), value.size() == 1);

            // Earlier versions read and write through QSettings.
            QSettings earlier(path, QSettings::IniFormat);
            QCOMPARE(earlier.value(u"a"_s).toStringList(), value);
            earlier.setValue(u"b"_s, value);
            earlier.sync();
            store.refresh();
            for (const QString& key : {u"a"_s, u"b"_s})
                QCOMPARE(store.stringArray(key), std::optional(value));
        }
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

    void texts()
    {
        const QString none = u"(none)"_s;
        for (const auto& [text, expected] :
             {std::pair(QByteArray("a=@ByteArray(x)"), none),
              std::pair(QByteArray("a=b, @Variant(\\0)"), none),
              std::pair(QByteArray("[x]\na=x"), none), std::pair(QByteArray("b=\"\na=x"), none),
              std::pair(QByteArray("\ta = x , \ty; no"), u"x|y"_s),
              std::pair(QByteArray("; a=1\n ;a=2\n\ta=x"), u"x"_s),
              std::pair(QByteArray("a=\\x62\\141n\\x61\"na\"\\z"), u"banana"_s),
              std::pair(QByteArray("a=1\n[x]\na=2\n[GENERAL]\na=x"), u"x"_s),
              std::pair(QByteArray("\xEF\xBB\xBF[General]\r\na=x\r\n"), u"x"_s)}) {
            const InRow row(text);
            const auto words = IniPreferencesStore(fileOf(text)).stringArray(u"a"_s);
            QCOMPARE(words ? words->join(u'|') : none, expected);
        }
    }

    void everythingElseStays()
    {
        const QByteArray text = "\xEF\xBB\xBF"
                                "; mine\r\n[x]\r\na=1\r\n[General]\r\na=%1 ; why\r\n"
                                "b = @Variant(\\0) \r\nc=2\r\n\r\n\"open";
        const QString path = fileOf(text);
        IniPreferencesStore store(path);
        store.setBoolean(u"a"_s, true);
        settle(store);
        QCOMPARE(contents(path), QByteArray(text).replace("%1 ", "true"));
        store.remove(u"c"_s);
        store.remove(u"b"_s);
        settle(store);
        QCOMPARE(contents(path),
                 text.left(text.indexOf("b =")).replace("%1 ", "true") + "\r\n\"open");
        store.remove(u"a"_s);
        store.setBoolean(u"a"_s, false);
        store.setBoolean(u"b"_s, false);
        settle(store);
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

    void whatIsNoPrivateFileIsSetAside()
    {
        const QString target = fileOf("a=target");
        using Obstacle = std::function<bool(const QString&, const char*)>;
        struct Row {
            const char* name;
            Obstacle put;
            bool staysAside = false;
        };
        const Obstacle foreign = [](const QString& path, const char* name) {
            write(path, "a=bad"); // where root runs the test, it is another user's
            return ::chown(name, 65534, gid_t(-1)) == 0 || ::chmod(name, 0) == 0;
        };
        const Obstacle tooLong = [](const QString& path, const char*) {
            write(path, "a=bad");
            return QFile::resize(path, 50LL * 1024 * 1024);
        };
        for (const auto& [kind, put, staysAside] :
             {Row{"pipe", [](auto&, const char*name) { return ::mkfifo(name, 0600) == 0; }},
              Row{"link", [&](auto&path, const char*) { return QFile::link(target, path); }},
              Row{"folder", [](auto&path, const char*) { return QDir().mkdir(path); }, true},
              Row{"of another user", foreign}, Row{"too long", tooLong}}) {
            const InRow row(kind);
            const QString path = unusedPath();
            const QByteArray name = QFile::encodeName(path);
            QVERIFY(QDir().mkpath(QFileInfo(path).path()));
            QVERIFY(put(path, name.constData()));
            IniPreferencesStore store(path);
            QVERIFY(!store.contains(u"a"_s));
            store.setString(u"b"_s, u"good"_s);
            QCOMPARE(contents(path), "[General]\nb=good\n");
            QCOMPARE(contents(target), "a=target");
            struct stat status = {};
            QCOMPARE(::lstat((name + ".damaged-1").constData(), &status), 0);
            store.removeLeftovers();
            QCOMPARE(::lstat((name + ".damaged-1").constData(), &status), staysAside ? 0 : -1);
        }
    }

    void programsOnOneFileKeepWhatEachSets()
    {
        const QString path = unusedPath();
        IniPreferencesStore one(path);
        IniPreferencesStore other(path);
        const auto add = [](const QString& word) {
            return [word](const QStringList& list) { return list + QStringList(word); };
        };
        one.editStringArray(u"a"_s, add(u"1"_s));
        settle(one);
        other.editStringArray(u"a"_s, add(u"2"_s));
        other.setString(u"b"_s, u"3"_s);
        QCOMPARE(other.stringArray(u"a"_s), QStringList({u"2"_s})); // as far as it knows
        settle(other);
        QSignalSpy changed(&one, &PreferencesStore::changed);
        one.setString(u"c"_s, u"4"_s);
        other.refresh();
        settle(one);
        QCOMPARE(changed.size(), 1);
        other.refresh();
        settle(other);
        for (const IniPreferencesStore* store : {&one, &other}) {
            QCOMPARE(store->stringArray(u"a"_s), QStringList({u"1"_s, u"2"_s}));
            QCOMPARE(store->string(u"b"_s), u"3"_s);
            QCOMPARE(store->string(u"c"_s), u"4"_s);
        }
    }

    void whatCannotBeWrittenIsKept()
    {
        const QString path = unusedPath();
        write(QFileInfo(path).path(), "no folder");
        IniPreferencesStore store(path);
        store.setString(u"long"_s, QString(IniFile::limit, u'x'));
        store.setString(u"a"_s, u"1"_s);
        QCOMPARE(store.string(u"a"_s), u"1"_s);
        settle(store);
        QCOMPARE(store.string(u"a"_s), u"1"_s);
        QVERIFY(QFile::remove(QFileInfo(path).path()));
        store.setString(u"b"_s, u"2"_s);
        settle(store);
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
            settle(store);
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
