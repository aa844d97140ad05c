#include "core/EntryText.h"
#include "core/SessionCodec.h"
#include "platform/linux/IniPreferencesStore.h"
#include "tests/ControllerFixture.h"
#include "tests/FileContents.h"
#include "tests/Test.h"

using namespace std::chrono_literals;

namespace {

QStringList savedQueries(const ControllerFixture& f)
{
    f.history->waitForDone();
    const auto decoded = decodeSessions(contents(f.path)).value_or(DecodedSessions());
    QStringList queries;
    for (const Session& session : decoded.sessions)
        queries.append(session.rootQuery);
    return queries;
}

QStringList filesBeside(const ControllerFixture& f)
{
    return QDir(f.folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
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
            ControllerFixture f;
            f.write(u"rome"_s);
            f.model->newSearch();
            f.now = f.now.addDays(days);
            f.start();
            f.model->search(u"Rome"_s);
            QCOMPARE(!f.model->isStreaming(), kept);
            QCOMPARE(savedQueries(f), QStringList({u"rome"_s})); // only a save rewrites it
        }
    }

    void hundredSessionsOneForEachQuery()
    {
        ControllerFixture f;
        QStringList expected;
        for (int i = 0; i <= 100; ++i) {
            expected.prepend(u"query %1"_s.arg(i));
            f.write(expected.first());
        }
        f.write(u"QUERY 50"_s); // opens the one there is
        expected.removeAt(50);
        expected.prepend(u"query 50"_s);
        f.model->newSearch();
        QCOMPARE(savedQueries(f), expected.first(100));
    }

    void clearedHistoryStaysCleared()
    {
        ControllerFixture f;
        setContents(f.path + u".unfinished-aB3dE6"_s, "of a killed write");
        setContents(f.path, "damaged");
        f.write(u"rome"_s);
        f.write(u"carthage"_s);
        f.model->clearHistory();
        QVERIFY(f.model->searchHistory().isEmpty());
        QVERIFY(f.preferences.values[u"searchHistory"_s].toStringList().isEmpty());
        QVERIFY(f.model->session()); // the open one stays
        f.model->prepareToQuit();
        QCOMPARE(contents(f.path), QByteArray("[]"));
        QCOMPARE(filesBeside(f), QStringList({u"history.json"_s}));
        f.model->search(u"rome"_s);
        QVERIFY(f.model->isStreaming());
        f.answer(u"Text."_s);
        f.model->prepareToQuit();
        QCOMPARE(savedQueries(f), QStringList({u"rome"_s, u"carthage"_s}));
    }

    void quitKeepsWhatWasWholeAlone()
    {
        ControllerFixture f;
        f.write(u"rome"_s, u"Whole."_s);
        f.model->navigateTo(u"Kings"_s);
        f.send(u"Half a section"_s);
        f.model->prepareToQuit();
        f.start();
        f.model->search(u"rome"_s);
        QCOMPARE(f.trail(), QStringList({u"Rome"_s}));
        QCOMPARE(f.model->session()->pages.size(), 1);
        f.model->upgradeToFullEntry();
        f.send(u"Half a text"_s);
        f.model->prepareToQuit();
        f.start();
        f.model->search(u"rome"_s);
        QCOMPARE(f.model->currentPage()->content, u"Whole."_s);
        QCOMPARE(f.model->currentPage()->entryType, EntryType::definition);
        f.model->search(u"carthage"_s);
        f.send(u"Half a text"_s);
        f.model->prepareToQuit();
        QCOMPARE(savedQueries(f), QStringList({u"rome"_s}));
    }

    void programsOnOneHomeKeepEachOthersSessions()
    {
        ControllerFixture f;
        f.write(u"rome"_s);
        f.model->newSearch();
        QCOMPARE(savedQueries(f), QStringList({u"rome"_s}));
        ControllerFixture other(f.path);
        other.write(u"carthage"_s);
        other.model->prepareToQuit();
        f.write(u"syracuse"_s);
        f.model->newSearch();
        QCOMPARE(savedQueries(f), QStringList({u"syracuse"_s, u"carthage"_s, u"rome"_s}));

        f.preferences.values[u"searchHistory"_s] = QStringList({u"delphi"_s});
        Q_EMIT f.preferences.changed();
        QCOMPARE(f.model->searchHistory(), QStringList({u"delphi"_s}));
        f.preferences.values[u"searchHistory"_s] = QStringList();
        f.model->search(u"sparta"_s);
        QCOMPARE(f.model->searchHistory(), QStringList({u"sparta"_s}));

        other.model->refreshHistory();
        other.history->waitForDone();
        QCoreApplication::sendPostedEvents();
        other.model->search(u"syracuse"_s);
        QVERIFY(!other.model->isStreaming()); // taken in when the panel was shown
        other.history->waitForDone();
        f.model->clearHistory();
        f.history->waitForDone();
        other.write(u"athens"_s);
        other.model->prepareToQuit();
        QCOMPARE(savedQueries(f), QStringList({u"athens"_s, u"syracuse"_s}));
    }

    /// The lock stands for a disk that keeps whoever uses it waiting.
    void mainThreadNeverWaitsForTheDisk()
    {
        ControllerFixture f;
        const QString path = f.folder.filePath(u"Varno.conf"_s);
        IniPreferencesStore preferences(path);
        f.write(u"rome"_s);
        std::optional<FolderLock> lock(std::in_place, f.folder.path(), 0ms);
        QVERIFY(lock->held());
        f.model->newSearch();
        preferences.setBoolean(u"a"_s, true);
        preferences.refresh();
        QVERIFY(preferences.boolean(u"a"_s).value_or(false));
        f.model->search(u"rome"_s);
        QVERIFY(!f.model->isStreaming());
        QVERIFY(!QFile::exists(path) && !QFile::exists(f.path));
        lock.reset();
        preferences.waitForDone();
        QVERIFY(contents(path).contains("a=true"));
        QCOMPARE(savedQueries(f), QStringList({u"rome"_s}));
    }

    void searchBeforeTheHistoryIsRead()
    {
        ControllerFixture f;
        f.write(u"rome"_s, u"Saved."_s);
        f.model->newSearch();
        HistoryStore history((f.history->waitForDone(), f.path));
        AppViewModel model({.preferences = f.preferences,
                            .history = history,
                            .claude = f.claude,
                            .gemini = f.gemini,
                            .now = [&f] { return f.now; }});
        model.search(u"delphi"_s);
        model.newSearch(); // takes that back
        model.search(u"rome"_s);
        QVERIFY(!model.isShowingEntry());
        QTRY_VERIFY(model.isShowingEntry());
        QCOMPARE(model.streamingContent(), u"Saved."_s);
        QCOMPARE(model.searchHistory().first(2), QStringList({u"rome"_s, u"delphi"_s}));
        QCOMPARE(f.claude.entries.size(), 1U);
    }

    void textOfAPageIsBounded()
    {
        ControllerFixture f;
        f.model->search(u"rome"_s);
        const QString half(longestEntryText / 2 + 1, u'x');
        f.send(half);
        f.claude.entries.back().sink.send(half);
        f.answer(half);
        QCOMPARE(f.model->currentPage()->content.size(), longestEntryText);
        f.model->search(QString(100'000, u'y')); // not kept among the searches
        QCOMPARE(f.model->searchHistory(), QStringList({u"rome"_s}));
    }

    void damagedFileIsAnEmptyHistoryAndKeptAside()
    {
        for (const char* bytes :
             {"[{\"id\":\"11111111-2222", "", "[{}]", static_cast<const char*>(nullptr)}) {
            const InRow row(bytes);
            ControllerFixture f;
            if (bytes)
                setContents(f.path, bytes);
            else
                QVERIFY(QDir().mkpath(f.path)); // no file, as unreadable as a damaged one
            f.start();
            f.write(u"rome"_s);
            QCOMPARE(contents(f.path), QByteArray(bytes)); // untouched until the first save
            f.write(u"carthage"_s);
            f.model->newSearch();
            QCOMPARE(savedQueries(f), QStringList({u"carthage"_s, u"rome"_s}));
            QCOMPARE(filesBeside(f), QStringList({u"history.json"_s, u"history.json.damaged-1"_s}));
            QCOMPARE(contents(f.path + u".damaged-1"_s), QByteArray(bytes));
        }
    }

    void preferencesSurviveARestart()
    {
        ControllerFixture f;
        f.model->setAIModel(AIModel::haiku);
        f.model->setTheme(AppTheme::dark);
        f.model->setFontSize(FontSize::large);
        f.model->setWebSearchEnabled(true);
        f.model->setImagesEnabled(true);
        f.model->search(u"rome"_s);
        QVERIFY(!f.preferences.values.contains(u"imagesEnabled"_s));
        f.start();
        QCOMPARE(f.model->aiModel(), AIModel::haiku);
        QCOMPARE(f.model->theme(), AppTheme::dark);
        QCOMPARE(f.model->fontSize(), FontSize::large);
        QVERIFY(f.model->webSearchEnabled());
        QVERIFY(!f.model->imagesEnabled());
        QCOMPARE(f.model->searchHistory(), QStringList({u"rome"_s}));
    }

    void unknownPreferencesReadAsTheDefaultsAndStay()
    {
        for (const QVariant& stored : {QVariant(u"LARGE"_s), QVariant(42)}) {
            const InRow row(stored);
            ControllerFixture f;
            for (const QString& key : {u"aiModel"_s, u"theme"_s, u"fontSize"_s,
                                       u"webSearchEnabled"_s, u"searchHistory"_s})
                f.preferences.values[key] = stored;
            const QVariantMap before = f.preferences.values;
            f.start();
            QCOMPARE(f.model->aiModel(), AIModel::sonnet);
            QCOMPARE(f.model->theme(), AppTheme::cream);
            QCOMPARE(f.model->fontSize(), FontSize::medium);
            QVERIFY(!f.model->webSearchEnabled());
            QVERIFY(f.model->searchHistory().isEmpty());
            QCOMPARE(f.preferences.values, before);
        }
    }
};

VARNO_TEST(QCoreApplication, HistoryTest)
#include "HistoryTest.moc"
