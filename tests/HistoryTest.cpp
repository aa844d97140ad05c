#include "core/EntryText.h"
#include "core/SessionCodec.h"
#include "platform/linux/IniPreferencesStore.h"
#include "tests/ControllerFixture.h"
#include "tests/Scarcity.h"
#include "tests/Table.h"
#include "tests/TestMain.h"

#include <QDir>
#include <QFile>

using namespace varno;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

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
    const auto decoded = decodeSessions(contents(fixture.path)).value_or(DecodedSessions());
    QStringList queries;
    for (const Session& session : decoded.sessions)
        queries.append(session.rootQuery);
    return queries;
}

QStringList filesBeside(const ControllerFixture& fixture)
{
    return QDir(fixture.folder.path())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

} // namespace

/// Both histories and the preferences, over restarts of the program.
class HistoryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sessionsReopenAfterARestart()
    {
        for (const auto& [days, kept] : {std::pair(30, true), {31, false}, {-400, true}}) {
            const InRow row(days);
            ControllerFixture fixture;
            fixture.write(u"rome"_s);
            fixture.model->newSearch();
            fixture.now = fixture.now.addDays(days);
            fixture.start();
            fixture.model->search(u"Rome"_s);
            QCOMPARE(!fixture.model->isStreaming(), kept);
            QCOMPARE(savedQueries(fixture), QStringList({u"rome"_s})); // only a save rewrites it
        }
    }

    void hundredSessionsOneForEachQuery()
    {
        ControllerFixture fixture;
        QStringList expected;
        for (int i = 0; i <= 100; ++i) {
            expected.prepend(u"query %1"_s.arg(i));
            fixture.write(expected.first());
        }
        fixture.write(u"QUERY 50"_s); // opens the one there is
        expected.removeAt(50);
        expected.prepend(u"query 50"_s);
        fixture.model->newSearch();
        QCOMPARE(savedQueries(fixture), expected.first(100));
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
        QCOMPARE(contents(fixture.path), QByteArray("[]"));
        QCOMPARE(fixture.preferences.values[u"searchHistory"_s].toStringList(), QStringList());
        fixture.model->newSearch();
        QCOMPARE(savedQueries(fixture), QStringList({u"carthage"_s}));
        fixture.model->search(u"rome"_s);
        QVERIFY(fixture.model->isStreaming());
    }

    void clearedHistoryStaysClearedAtQuit()
    {
        ControllerFixture fixture;
        setContents(fixture.path + u".unfinished-aB3dE6"_s, "of a killed write");
        setContents(fixture.path, "damaged");
        fixture.write(u"rome"_s);
        fixture.write(u"carthage"_s);
        fixture.model->clearHistory();
        fixture.model->prepareToQuit();
        QCOMPARE(contents(fixture.path), QByteArray("[]"));
        QCOMPARE(filesBeside(fixture), QStringList({u"history.json"_s}));
        fixture.write(u"syracuse"_s);
        fixture.model->prepareToQuit();
        QCOMPARE(savedQueries(fixture), QStringList({u"syracuse"_s, u"carthage"_s}));
        QCOMPARE(filesBeside(fixture), QStringList({u"history.json"_s}));
        const auto forTheUserAlone =
            QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;
        QCOMPARE(QFile::permissions(fixture.path), forTheUserAlone);
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
        ControllerFixture other(fixture.path);
        other.write(u"carthage"_s);
        other.model->prepareToQuit();
        fixture.write(u"syracuse"_s);
        fixture.model->newSearch();
        QCOMPARE(savedQueries(fixture), QStringList({u"syracuse"_s, u"carthage"_s, u"rome"_s}));

        fixture.preferences.values[u"searchHistory"_s] = QStringList({u"delphi"_s});
        Q_EMIT fixture.preferences.changed();
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
        const QString half(longestEntryText / 2 + 1, u'x');
        fixture.send(half);
        fixture.claude.entries.back().sink.send(half);
        fixture.answer(half);
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

    void damagedFileIsAnEmptyHistoryAndKeptAside()
    {
        for (const char* bytes : {"[{\"id\":\"11111111-2222", "", "[{}]"}) {
            const InRow row(bytes);
            ControllerFixture fixture;
            setContents(fixture.path, bytes);
            fixture.start();
            fixture.write(u"rome"_s);
            QCOMPARE(contents(fixture.path), QByteArray(bytes)); // untouched until the first save
            fixture.write(u"carthage"_s);
            fixture.model->newSearch();
            QCOMPARE(savedQueries(fixture), QStringList({u"carthage"_s, u"rome"_s}));
            QCOMPARE(filesBeside(fixture),
                     QStringList({u"history.json"_s, u"history.json.damaged-1"_s}));
            QCOMPARE(contents(fixture.path + u".damaged-1"_s), QByteArray(bytes));
        }
    }

    /// The lock stands for a disk that keeps whoever uses it waiting.
    void mainThreadNeverWaitsForTheDisk()
    {
        ControllerFixture fixture;
        const QString path = fixture.folder.filePath(u"Varno.conf"_s);
        IniPreferencesStore preferences(path);
        fixture.write(u"rome"_s);
        std::optional<FolderLock> lock(std::in_place, fixture.folder.path(), 0ms);
        QVERIFY(lock->held());
        fixture.model->newSearch();
        preferences.setBoolean(u"a"_s, true);
        preferences.refresh();
        QVERIFY(preferences.boolean(u"a"_s).value_or(false));
        fixture.model->search(u"rome"_s);
        QVERIFY(!fixture.model->isStreaming());
        QVERIFY(!QFile::exists(path) && !QFile::exists(fixture.path));
        lock.reset();
        preferences.waitForDone();
        QVERIFY(contents(path).contains("a=true"));
        QCOMPARE(savedQueries(fixture), QStringList({u"rome"_s}));
    }

    void searchBeforeTheHistoryIsRead()
    {
        ControllerFixture fixture;
        fixture.write(u"rome"_s, u"Saved."_s);
        fixture.model->newSearch();
        HistoryStore history((fixture.history->waitForDone(), fixture.path));
        AppViewModel model({.preferences = fixture.preferences,
                            .history = history,
                            .claude = fixture.claude,
                            .gemini = fixture.gemini,
                            .now = [&fixture] { return fixture.now; }});
        model.search(u"delphi"_s);
        model.newSearch(); // takes that back
        model.search(u"rome"_s);
        QVERIFY(!model.isShowingEntry());
        QTRY_VERIFY(model.isShowingEntry());
        QCOMPARE(model.streamingContent(), u"Saved."_s);
        QCOMPARE(model.searchHistory().first(2), QStringList({u"rome"_s, u"delphi"_s}));
        QCOMPARE(fixture.claude.entries.size(), 1U);
    }

    void folderInPlaceOfTheFileLosesNothing()
    {
        ControllerFixture fixture;
        QVERIFY(QDir().mkpath(fixture.path + u"/inside"_s));
        fixture.start();
        fixture.write(u"rome"_s);
        fixture.model->newSearch();
        fixture.model->search(u"rome"_s); // still there in memory
        QVERIFY(!fixture.model->isStreaming());
        fixture.model->prepareToQuit();
        QVERIFY(QDir(fixture.path + u".damaged-1/inside"_s).exists());
        QCOMPARE(savedQueries(fixture), QStringList({u"rome"_s}));
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

    void unknownPreferencesReadAsTheDefaultsAndStay()
    {
        for (const QVariant& stored :
             {QVariant(), QVariant(u"LARGE"_s), QVariant(42), QVariant(QVariantList({1, 2}))}) {
            const InRow row(stored);
            ControllerFixture fixture;
            for (const auto* key : {u"aiModel", u"theme", u"fontSize", u"webSearchEnabled",
                                    u"imagesEnabled", u"searchHistory"})
                fixture.preferences.values[QStringView(key).toString()] = stored;
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
    }
};

VARNO_TEST(QCoreApplication, HistoryTest)
#include "HistoryTest.moc"
