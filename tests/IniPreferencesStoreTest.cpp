#include "platform/linux/IniPreferencesStore.h"

#include "tests/FileContents.h"
#include "tests/PreferencesCases.h"

#include <QSettings>
#include <QTemporaryDir>

class IniPreferencesStoreTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    int m_number = 0;

    /// In a folder that is not there yet.
    QString unusedPath() { return m_folder.filePath(u"%1/Varno.conf"_s.arg(++m_number)); }

    MakePreferences opener()
    {
        return [path = unusedPath()] { return std::make_unique<IniPreferencesStore>(path); };
    }

    QString fileOf(const QByteArray& text)
    {
        QString path = m_folder.filePath(u"%1.conf"_s.arg(++m_number));
        setContents(path, text);
        return path;
    }

private Q_SLOTS:
    void lists()
    {
        verifyListsAreKept(opener());
        const QString path = unusedPath();
        IniPreferencesStore store(path);
        const auto lists = hardLists();
        for (const QStringList& value : lists) {
            const InRow row(value);
            store.setStringArray(u"a"_s, value);
            QCOMPARE(store.string(u"a"_s).has_value(), value.size() == 1);
            store.waitForDone();

            // Earlier versions read and write through QSettings.
            QSettings earlier(path, QSettings::IniFormat);
            QCOMPARE(earlier.value(u"a"_s).toStringList(), value);
            earlier.setValue(u"b"_s, value);
            earlier.sync();
            store.refresh();
            QTRY_COMPARE(store.stringArray(u"b"_s), std::optional(value));
            QCOMPARE(store.stringArray(u"a"_s), std::optional(value));
        }
    }

    void texts()
    {
        const QString none = u"(none)"_s;
        for (const auto& [text, expected] :
             Rows<QByteArray, QString>{{QByteArray("a=@ByteArray(x)"), none},
                                       {QByteArray("a=b, @Variant(\\0)"), none},
                                       {QByteArray("b=\"\na=x"), none},
                                       {QByteArray("\ta = x , \ty; no"), u"x|y"_s},
                                       {QByteArray("; a=1\n ;a=2\n\ta=x"), u"x"_s},
                                       {QByteArray("a=\\x62\\141n\\x61\"na\"\\z"), u"banana"_s},
                                       {QByteArray("a=1\n[x]\na=2\n[GENERAL]\na=x"), u"x"_s},
                                       {QByteArray("\xEF\xBB\xBF[General]\r\na=x\r\n"), u"x"_s}}) {
            const InRow row(text);
            const auto words = IniPreferencesStore(fileOf(text)).stringArray(u"a"_s);
            QCOMPARE(words ? words->join(u'|') : none, expected);
        }
        for (const auto& [word, expected] : Rows<QByteArray, std::optional<bool>>{
                 {"true", true}, {"1", true}, {"false", false}, {"0", false}, {"banana", {}}})
            QCOMPARE(IniPreferencesStore(fileOf("a=" + word)).boolean(u"a"_s), expected);
    }

    void everythingElseStays()
    {
        const QByteArray text = "\xEF\xBB\xBF"
                                "; mine\r\n[x]\r\na=1\r\n[General]\r\na=%1 ; why\r\n"
                                "b = @Variant(\\0) \r\nc=2\r\n\r\n\"open";
        const QString path = fileOf(text);
        IniPreferencesStore store(path);
        store.setBoolean(u"a"_s, true);
        store.waitForDone();
        QCOMPARE(contents(path), QByteArray(text).replace("%1 ", "true"));
        store.remove(u"c"_s);
        store.remove(u"b"_s);
        store.waitForDone();
        QCOMPARE(contents(path),
                 text.left(text.indexOf("b =")).replace("%1 ", "true") + "\r\n\"open");
        store.remove(u"a"_s);
        store.setBoolean(u"a"_s, false);
        store.setBoolean(u"b"_s, false);
        store.waitForDone();
        QVERIFY(contents(path).startsWith("\xEF\xBB\xBF[General]\nb=false\na=false\n; mine"));
    }

    void whatIsNoPrivateFileIsSetAside()
    {
        const QString target = fileOf("a=target");
        const QString path = unusedPath();
        QVERIFY(QDir().mkpath(QFileInfo(path).path()) && QFile::link(target, path));
        IniPreferencesStore store(path);
        QVERIFY(!store.contains(u"a"_s));
        store.setString(u"b"_s, u"good"_s);
        store.waitForDone();
        QCOMPARE(contents(path), "[General]\nb=good\n");
        QCOMPARE(contents(target), "a=target");
        const QString aside = path + u".damaged-1"_s;
        QVERIFY(QFileInfo::exists(aside));
        store.removeLeftovers();
        store.waitForDone();
        QVERIFY(!QFileInfo::exists(aside));
    }

    void programsOnOneFileKeepWhatEachSets() { verifyProgramsKeepWhatEachSets(opener()); }

    void whatCannotBeWrittenIsKept()
    {
        const QString path = unusedPath();
        setContents(QFileInfo(path).path(), "no folder");
        IniPreferencesStore store(path);
        store.setString(u"long"_s, QString(IniFile::limit, u'x'));
        store.setString(u"a"_s, u"1"_s);
        QCOMPARE(store.string(u"a"_s), u"1"_s);
        store.waitForDone();
        QVERIFY(QFile::remove(QFileInfo(path).path()));
        store.setString(u"b"_s, u"2"_s);
        store.waitForDone();
        const IniPreferencesStore again(path);
        QVERIFY(again.contains(u"a"_s) && again.contains(u"b"_s) && !again.contains(u"long"_s));
        QVERIFY(store.contains(u"long"_s));
    }

    void nothingIsLeftBeside()
    {
        const QString path = unusedPath();
        setContents(path + u".lock"_s, "1\nvarno\nanother host\n"); // what a lock file leaves
        setContents(path + u".unfinished-aB3dE6"_s, "what a killed write leaves");
        IniPreferencesStore store(path);
        store.setString(u"a"_s, u"1"_s);
        store.waitForDone();
        QCOMPARE(QFileInfo(path).dir().entryList(QDir::Files),
                 QStringList({u"Varno.conf"_s, u"Varno.conf.lock"_s}));
    }
};

VARNO_TEST(QCoreApplication, IniPreferencesStoreTest)
#include "IniPreferencesStoreTest.moc"
