#include "platform/linux/SettingsPreferencesStore.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace varno;
using namespace Qt::StringLiterals;

class SettingsPreferencesStoreTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    int m_number = 0;

    /// In a folder that is not there yet.
    QString unusedPath() { return m_folder.filePath(u"%1/Varno.conf"_s.arg(++m_number)); }

    /// What another process would read now: of one file, a process keeps one copy in memory.
    SettingsPreferencesStore readAgain(const QString& path)
    {
        const QString copy = m_folder.filePath(u"copy-%1.conf"_s.arg(++m_number));
        QFile::copy(path, copy);
        return SettingsPreferencesStore(copy);
    }

    QString fileOf(const QByteArray& text)
    {
        QFile file(m_folder.filePath(u"%1.conf"_s.arg(++m_number)));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("Cannot write the file of the test");
        return file.fileName();
    }

private slots:
    void booleans()
    {
        const QString path = unusedPath();
        SettingsPreferencesStore store(path);
        QVERIFY(!store.boolean(u"a"_s));
        for (const bool value : {true, false}) {
            store.setBoolean(u"a"_s, value);
            QCOMPARE(store.boolean(u"a"_s), std::optional(value));
            QCOMPARE(readAgain(path).boolean(u"a"_s), std::optional(value));
        }
    }

    void lists_data()
    {
        QTest::addColumn<QStringList>("value");
        QTest::newRow("empty") << QStringList();
        QTest::newRow("zero") << QStringList{QString(QChar(0)) + u"zero"_s};
        QTest::newRow("zero in one of two") << QStringList{QString(QChar(0)) + u"zero"_s, u"b"_s};
        QTest::newRow("two empty words") << QStringList{u""_s, u""_s};
        for (const QString& word :
             {u""_s, u"plain"_s, u"  blanks  "_s, u"a, b"_s, u"a;b=c#d"_s, u"\"quoted\" \\n \\"_s,
              u"two\r\nlines\tand\n"_s, u"Größe 名前 العربية 🦊"_s, u"true"_s, u"42"_s,
              u"@Invalid()"_s, u"@ByteArray(x)"_s, u"@@"_s, u"%41%%"_s, u"[General]"_s,
              QString(10000, u'x')}) {
            QTest::addRow("one: %s", qPrintable(word.left(20).simplified())) << QStringList{word};
            QTest::addRow("two: %s", qPrintable(word.left(20).simplified()))
                << QStringList{word, u"b, c"_s};
        }
    }

    void lists()
    {
        QFETCH(QStringList, value);
        const QString path = unusedPath();
        SettingsPreferencesStore store(path);
        QVERIFY(!store.stringArray(u"a"_s));
        store.setStringArray(u"a"_s, value);
        QCOMPARE(store.stringArray(u"a"_s), std::optional(value));
        QCOMPARE(readAgain(path).stringArray(u"a"_s), std::optional(value));
        if (value.isEmpty())
            return;
        store.setString(u"a"_s, value.constFirst());
        store.setString(u"after"_s, u"intact"_s);
        QCOMPARE(store.string(u"a"_s), std::optional(value.constFirst()));
        QCOMPARE(readAgain(path).string(u"a"_s), std::optional(value.constFirst()));
        QCOMPARE(readAgain(path).string(u"after"_s), std::optional(u"intact"_s));
    }

    void otherTypesReadAsAbsent_data()
    {
        QTest::addColumn<QByteArray>("word");
        QTest::addColumn<std::optional<bool>>("boolean");
        QTest::addColumn<bool>("isString");
        QTest::addColumn<bool>("isList");
        const std::optional<bool> none;
        QTest::newRow("1") << QByteArray("1") << std::optional(true) << true << true;
        QTest::newRow("false") << QByteArray("false") << std::optional(false) << true << true;
        QTest::newRow("nonsense") << QByteArray("banana") << none << true << true;
        QTest::newRow("nothing") << QByteArray("") << none << true << true;
        QTest::newRow("list") << QByteArray("true, false") << none << false << true;
        QTest::newRow("bytes") << QByteArray("@ByteArray(true)") << none << false << false;
        QTest::newRow("point") << QByteArray("@Point(1 2)") << none << false << false;
    }

    void otherTypesReadAsAbsent()
    {
        QFETCH(QByteArray, word);
        const SettingsPreferencesStore store(fileOf("[General]\na=" + word + "\nb=intact\n"));
        QTEST(store.boolean(u"a"_s), "boolean");
        QTEST(store.string(u"a"_s).has_value(), "isString");
        QTEST(store.stringArray(u"a"_s).has_value(), "isList");
        QCOMPARE(store.string(u"b"_s), std::optional(u"intact"_s));
    }

    void garbageIsReplaced()
    {
        for (const QByteArray& text :
             {QByteArray("\0\xff\xfe[[[\n=\n\"", 11), QByteArray("[General]\na=\"open\n"),
              QByteArray("{\"a\": [true"), QByteArray(1000000, '[')}) {
            const QString path = fileOf(text);
            SettingsPreferencesStore store(path);
            QVERIFY(!store.boolean(u"valid"_s));
            store.setBoolean(u"valid"_s, true);
            QCOMPARE(readAgain(path).boolean(u"valid"_s), std::optional(true));
        }
    }

    void fileIsPrivate()
    {
        ::umask(0);
        const QString path = unusedPath();
        SettingsPreferencesStore store(path);
        for (int i = 0; i < 2; ++i) {
            store.setString(u"a"_s, QString::number(i));
            struct stat status = {};
            QCOMPARE(::stat(QFile::encodeName(path).constData(), &status), 0);
            QCOMPARE(status.st_mode & 07777U, 0600U);
        }
    }
};

QTEST_GUILESS_MAIN(SettingsPreferencesStoreTest)
#include "SettingsPreferencesStoreTest.moc"
