#include "core/EntryText.h"
#include "core/SessionCodec.h"
#include "tests/ControllerFixture.h"
#include "tests/Scarcity.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void setContents(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(bytes), bytes.size());
}

QStringList savedQueries(const ControllerFixture& fixture)
{
    fixture.history->waitForDone();
    const QByteArray bytes = contents(fixture.path());
    const auto decoded = decodeSessions(bytes).value_or(DecodedSessions());
    QStringList queries;
    for (const Session& session : decoded.sessions)
        queries.append(session.rootQuery);
    return queries;
}

} // namespace

/// Both histories and the preferences, over restarts of the program.
class HistoryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sessionsReopenAfterARestart_data()
    {
        QTest::addColumn<int>("days");
        QTest::addColumn<bool>("kept");
        QTest::newRow("29 days") << 29 << true;
        QTest::newRow("30 days to the second") << 30 << true;
        QTest::newRow("31 days") << 31 << false;
        QTest::newRow("made in the future") << -400 << true;
    }
    void sessionsReopenAfterARestart()
    {
        QFETCH(int, days);
        ControllerFixture fixture;
        fixture.write(u"rome"_s);
        fixture.model->newSearch();
        fixture.now = fixture.now.addDays(days);
        fixture.start();
        fixture.model->search(u"Rome"_s);
        QTEST(!fixture.model->isStreaming(), "kept");
        QCOMPARE(savedQueries(fixture), QStringList({u"rome"_s})); // only a save rewrites it
    }

    void oneSessionForEachQueryNewestFirst()
    {
        ControllerFixture fixture;
        for (const QString& query : {u"rome"_s, u"carthage"_s, u"ROME"_s})
            fixture.write(query + u' ' + QString(), u"Text."_s);
        fixture.model->newSearch();
        QCOMPARE(savedQueries(fixture), QStringList({u"rome"_s, u"carthage"_s}));
    }

    void hundredSessionsAtMost()
    {
        ControllerFixture fixture;
        for (int i = 0; i <= 100; ++i) {
            fixture.write(u"query %1"_s.arg(i));
            fixture.model->newSearch();
        }
        const QStringList saved = savedQueries(fixture);
        QCOMPARE(saved.size(), 100);
        QCOMPARE(saved.first(), u"query 100"_s);
        QCOMPARE(saved.last(), u"query 1"_s);
    }

    void clearedHistoryIsEmptyOnDisk()
    {
        ControllerFixture fixture;
        fixture.write(u"rome"_s);
        fixture.write(u"carthage"_s);
        fixture.model->clearHistory();
        QVERIFY(fixture.model->searchHistory().isEmpty());
        QVERIFY(fixture.model->session()); // the open one stays
        fixture.history->waitForDone();
        QCOMPARE(contents(fixture.path()), QByteArray("[]"));
        QCOMPARE(fixture.preferences.values[u"searchHistory"_s].toStringList(), QStringList());
        fixture.model->newSearch();
        QCOMPARE(savedQueries(fixture), QStringList({u"carthage"_s}));
    }

    void clearedHistoryStaysClearedAtQuit()
    {
        ControllerFixture fixture;
        setContents(fixture.path() + u".unfinished-aB3dE6"_s, "of a killed write");
        setContents(fixture.path(), "damaged");
        fixture.write(u"rome"_s);
        fixture.write(u"carthage"_s);
        fixture.model->clearHistory();
        fixture.model->prepareToQuit();
        QCOMPARE(contents(fixture.path()), QByteArray("[]"));
        QCOMPARE(QDir(fixture.folder.path()).entryList(QDir::Files | QDir::Hidden),
                 QStringList({u"history.json"_s}));
        fixture.write(u"syracuse"_s);
        fixture.model->prepareToQuit();
        QCOMPARE(savedQueries(fixture), QStringList({u"syracuse"_s, u"carthage"_s}));
    }

    void quitKeepsWhatWasWholeAlone()
    {
        ControllerFixture fixture;
        fixture.write(u"rome"_s, u"Whole."_s);
        fixture.model->navigateTo(u"Kings"_s);
        fixture.send(u"Half a section"_s);
        fixture.model->prepareToQuit();
        fixture.start();
        fixture.model->search(u"rome"_s);
        QCOMPARE(fixture.trail(), QStringList({u"Rome"_s}));
        fixture.model->upgradeToFullEntry();
        fixture.send(u"Half a text"_s);
        fixture.model->prepareToQuit();
        fixture.start();
        fixture.model->search(u"rome"_s);
        QCOMPARE(fixture.model->currentPage()->content, u"Whole."_s);
        QCOMPARE(fixture.model->currentPage()->entryType, EntryType::definition);
        fixture.model->search(u"carthage"_s);
        fixture.send(u"Half a text"_s);
        fixture.model->prepareToQuit();
        QCOMPARE(savedQueries(fixture), QStringList({u"rome"_s}));
    }

    void programsOnOneHomeKeepEachOthersSessions()
    {
        ControllerFixture fixture;
        fixture.write(u"rome"_s);
        fixture.model->newSearch();
        QCOMPARE(savedQueries(fixture), QStringList({u"rome"_s}));
        ControllerFixture other(fixture.path());
        other.write(u"carthage"_s);
        other.model->prepareToQuit();
        fixture.write(u"syracuse"_s);
        fixture.model->newSearch();
        QCOMPARE(savedQueries(fixture), QStringList({u"syracuse"_s, u"carthage"_s, u"rome"_s}));

        fixture.preferences.values[u"searchHistory"_s] = QStringList({u"delphi"_s});
        fixture.model->refreshHistory();
        QCOMPARE(fixture.model->searchHistory(), QStringList({u"delphi"_s}));
        fixture.preferences.values[u"searchHistory"_s] = QStringList();
        fixture.model->search(u"sparta"_s);
        QCOMPARE(fixture.model->searchHistory(), QStringList({u"sparta"_s}));

        other.model->refreshHistory();
        other.history->waitForDone();
        QCoreApplication::sendPostedEvents();
        other.model->search(u"syracuse"_s);
        QVERIFY(!other.model->isStreaming()); // taken in when the panel was shown
        other.history->waitForDone();
        fixture.model->clearHistory();
        fixture.history->waitForDone();
        other.write(u"athens"_s);
        other.model->prepareToQuit();
        QCOMPARE(savedQueries(fixture), QStringList({u"athens"_s, u"syracuse"_s}));
    }

    void textOfAPageIsBounded()
    {
        ControllerFixture fixture;
        fixture.model->search(u"rome"_s);
        const auto& sink = fixture.claude.entries.back().sink;
        for (int i = 0; i < 3; ++i)
            sink.send(QString(longestEntryText / 2 + 1, u'x'));
        sink.finish(EntryStream::Completed());
        QTRY_VERIFY(!fixture.model->isStreaming());
        QCOMPARE(fixture.model->currentPage()->content.size(), longestEntryText);
        fixture.model->search(QString(100'000, u'y')); // not kept among the searches
        QCOMPARE(fixture.model->searchHistory(), QStringList({u"rome"_s}));
    }

    void isSavedAlsoWithoutAThread()
    {
        ControllerFixture fixture;
        const NoThreads none;
        fixture.write(u"rome"_s);
        fixture.model->newSearch();
        QCOMPARE(savedQueries(fixture), QStringList({u"rome"_s}));
    }

    void fileIsForTheUserAlone()
    {
        ControllerFixture fixture;
        fixture.write(u"rome"_s);
        fixture.model->prepareToQuit();
        struct stat status = {};
        QCOMPARE(::stat(QFile::encodeName(fixture.path()).constData(), &status), 0);
        QCOMPARE(status.st_mode & 07777U, 0600U);
        QCOMPARE(QDir(fixture.folder.path()).entryList(QDir::Files | QDir::Hidden),
                 QStringList({u"history.json"_s}));
    }

    void damagedFileIsAnEmptyHistoryAndKeptAside_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("half-written") << QByteArray("[{\"id\":\"11111111-2222");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("other format") << QByteArray("PK\x03\x04\0\0", 6);
        QTest::newRow("one bad session") << QByteArray("[{}]");
        QTest::newRow("nested deeply") << QByteArray(1'000'000, '[');
    }
    void damagedFileIsAnEmptyHistoryAndKeptAside()
    {
        QFETCH(QByteArray, bytes);
        ControllerFixture fixture;
        setContents(fixture.path(), bytes);
        fixture.start();
        fixture.write(u"rome"_s);
        QCOMPARE(contents(fixture.path()), bytes); // untouched until the first save
        fixture.model->newSearch();
        fixture.write(u"carthage"_s);
        fixture.model->newSearch();
        QCOMPARE(savedQueries(fixture), QStringList({u"carthage"_s, u"rome"_s}));

        const QStringList others =
            QDir(fixture.folder.path())
                .entryList({u"history.json.*"_s}, QDir::Files | QDir::Hidden);
        QCOMPARE(others.size(), 1);
        QCOMPARE(contents(fixture.folder.filePath(others.first())), bytes);
    }

    void folderInPlaceOfTheFileLosesNothing()
    {
        ControllerFixture fixture;
        QVERIFY(QDir().mkpath(fixture.path() + u"/inside"_s));
        fixture.start();
        fixture.write(u"rome"_s);
        fixture.model->newSearch();
        fixture.model->search(u"rome"_s); // still there in memory
        QVERIFY(!fixture.model->isStreaming());
        fixture.model->prepareToQuit();
        QVERIFY(QDir(fixture.path() + u".damaged-1/inside"_s).exists());
        QCOMPARE(savedQueries(fixture), QStringList({u"rome"_s}));
    }

    void newestListIsTheOneThatStays()
    {
        ControllerFixture fixture;
        QStringList expected;
        for (int i = 0; i < 60; ++i) {
            fixture.write(u"query %1"_s.arg(i), QString(20'000, u'x'));
            fixture.model->newSearch();
            expected.prepend(u"query %1"_s.arg(i));
        }
        QCOMPARE(savedQueries(fixture), expected);
    }

    void preferencesSurviveARestart()
    {
        ControllerFixture fixture;
        fixture.model->setAIModel(AIModel::haiku);
        fixture.model->setTheme(AppTheme::dark);
        fixture.model->setFontSize(FontSize::large);
        fixture.model->setWebSearchEnabled(true);
        fixture.model->setImagesEnabled(true);
        fixture.model->search(u"rome"_s);
        QVERIFY(!fixture.preferences.values.contains(u"imagesEnabled"_s));
        fixture.start();
        QCOMPARE(fixture.model->aiModel(), AIModel::haiku);
        QCOMPARE(fixture.model->theme(), AppTheme::dark);
        QCOMPARE(fixture.model->fontSize(), FontSize::large);
        QVERIFY(fixture.model->webSearchEnabled());
        QVERIFY(!fixture.model->imagesEnabled());
        QCOMPARE(fixture.model->searchHistory(), QStringList({u"rome"_s}));
    }

    void unknownPreferencesReadAsTheDefaultsAndStay_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::newRow("absent") << QVariant();
        QTest::newRow("a retired model") << QVariant(u"claude-2"_s);
        QTest::newRow("other case") << QVariant(u"LARGE"_s);
        QTest::newRow("a number") << QVariant(42);
        QTest::newRow("a list of numbers") << QVariant(QVariantList({1, 2}));
    }
    void unknownPreferencesReadAsTheDefaultsAndStay()
    {
        QFETCH(QVariant, stored);
        ControllerFixture fixture;
        const QStringList keys = {u"aiModel"_s,          u"theme"_s,         u"fontSize"_s,
                                  u"webSearchEnabled"_s, u"imagesEnabled"_s, u"searchHistory"_s};
        for (const QString& key : keys)
            fixture.preferences.values[key] = stored;
        const QVariantMap before = fixture.preferences.values;
        fixture.start();
        QCOMPARE(fixture.model->aiModel(), AIModel::sonnet);
        QCOMPARE(fixture.model->theme(), AppTheme::cream);
        QCOMPARE(fixture.model->fontSize(), FontSize::medium);
        QVERIFY(!fixture.model->webSearchEnabled());
        QVERIFY(!fixture.model->imagesEnabled());
        QVERIFY(fixture.model->searchHistory().isEmpty());
        QCOMPARE(fixture.preferences.values, before);
    }
};

VARNO_TEST(QCoreApplication, HistoryTest)
#include "HistoryTest.moc"
