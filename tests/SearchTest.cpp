#include "core/Prompts.h"
#include "tests/ControllerFixture.h"

#include <QFile>

using namespace varno;
using namespace Qt::StringLiterals;

using Change = AppViewModel::Change;

/// Searching, streaming, reloading.
class SearchTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void blankQueryChangesNothing()
    {
        ControllerFixture fixture;
        fixture.write(u"rome"_s);
        fixture.announced = {};
        fixture.model->search(u" \n\t\u2003 "_s);
        QVERIFY(!fixture.announced);
        QCOMPARE(fixture.model->session()->rootQuery, u"rome"_s);
        QCOMPARE(fixture.model->searchHistory(), QStringList({u"rome"_s}));
    }

    void newEntry_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<EntryType>("type");
        QTest::newRow("definition") << u"photosynthesis"_s << EntryType::definition;
        QTest::newRow("short answer") << u"black HOLES"_s << EntryType::shortAnswer;
        QTest::newRow("article") << u"the history of the roman empire"_s << EntryType::full;
    }
    void newEntry()
    {
        QFETCH(QString, query);
        QFETCH(EntryType, type);
        ControllerFixture fixture;
        AppViewModel& model = *fixture.model;
        model.search(u"  "_s + query + u"\n"_s);

        QVERIFY(model.isShowingEntry());
        QVERIFY(model.isStreaming());
        QCOMPARE(model.session()->rootQuery, query);
        QCOMPARE(model.session()->createdAt, double(fixture.now.toSecsSinceEpoch() - 978307200));
        QCOMPARE(model.currentPage()->entryType, type);
        QCOMPARE(model.currentPage()->title, model.streamingTitle());
        QVERIFY(model.streamingTitle().startsWith(query.first(1).toUpper()));
        QCOMPARE(model.tocIsLoading(), type == EntryType::full);

        QCOMPARE(fixture.claude.entries.size(), 1U);
        const ModelRequest& request = fixture.claude.entries.front().request;
        QCOMPARE(request.prompt, entryPrompt(type, query));
        QCOMPARE(request.systemPrompt, entrySystemPrompt());
        QCOMPARE(request.model, u"claude-sonnet-5"_s);
        QVERIFY(!request.webSearch);
        QCOMPARE(fixture.claude.tocs.size(), type == EntryType::full ? 1U : 0U);
        QVERIFY(fixture.gemini.entries.empty());
    }

    void modelAndWebSearchOfTheMoment()
    {
        ControllerFixture fixture;
        fixture.model->setAIModel(AIModel::geminiFlash);
        fixture.model->setWebSearchEnabled(true);
        fixture.model->search(u"why do cats always land upright"_s);
        fixture.model->setAIModel(AIModel::opus); // concerns the next request
        QCOMPARE(fixture.gemini.entries.front().request.model, u"gemini-3.6-flash"_s);
        QVERIFY(fixture.gemini.entries.front().request.webSearch);
        QCOMPARE(fixture.gemini.tocs.front().model, u"gemini-3.6-flash"_s);
        QVERIFY(fixture.gemini.tocs.front().webSearch);
        QCOMPARE(fixture.gemini.tocs.front().topic, u"Why Do Cats Always Land Upright"_s);
        fixture.model->reloadCurrentPage();
        QCOMPARE(fixture.claude.entries.front().request.model, u"claude-opus-4-8"_s);
    }

    void piecesGrowTextAndPage()
    {
        ControllerFixture fixture;
        fixture.model->search(u"rome"_s);
        fixture.announced = {};
        fixture.send(u"A \"city\""_s);
        fixture.send(u".\nSEE_ALSO"_s);
        QCOMPARE(fixture.announced, AppViewModel::Changes(Change::streamingPiece));
        QCOMPARE(fixture.model->currentPage()->content, u"A \"city\".\nSEE_ALSO"_s);
        QVERIFY(fixture.model->isStreaming());
    }

    void finishedEntry_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("content");
        QTest::addColumn<QStringList>("seeAlso");
        QTest::newRow("as asked") << u"Text.\nSEE_ALSO_JSON: [\"A\", \"B\"]\n</entry>"_s
                                  << u"Text."_s << QStringList({u"A"_s, u"B"_s});
        QTest::newRow("no topics") << u" Text.</entry>"_s << u"Text."_s << QStringList();
        QTest::newRow("malformed topics")
            << u"Text.\nSEE_ALSO_JSON: [\"A\", B]</entry>"_s << u"Text."_s << QStringList();
        QTest::newRow("topics cut off")
            << u"Text.\nSEE_ALSO_JSON: [\"A\""_s << u"Text."_s << QStringList();
        QTest::newRow("brackets the wrong way round")
            << u"Text.\nSEE_ALSO_JSON: none ] [ none"_s << u"Text."_s << QStringList();
        QTest::newRow("topics behind the tag")
            << u"Text.</entry>\nSEE_ALSO_JSON: [\"A\"]"_s << u"Text."_s << QStringList({u"A"_s});
        QTest::newRow("nothing") << QString() << QString() << QStringList();
    }
    void finishedEntry()
    {
        QFETCH(QString, answer);
        ControllerFixture fixture;
        fixture.write(u"rome"_s, answer);
        QTEST(fixture.model->streamingContent(), "content");
        QTEST(fixture.model->currentPage()->content, "content");
        QTEST(fixture.model->currentPage()->seeAlso, "seeAlso");
        QVERIFY(!fixture.model->errorMessage());
    }

    void failureKeepsWhatArrived()
    {
        ControllerFixture fixture;
        fixture.model->search(u"rome"_s);
        fixture.answer(u"Half a text.\nSEE_ALSO_JSON: [\"A\"]"_s, Failure{u"It broke."_s});
        QCOMPARE(fixture.model->errorMessage(), u"It broke."_s);
        QCOMPARE(fixture.model->currentPage()->content, u"Half a text."_s);
        QCOMPARE(fixture.model->currentPage()->seeAlso, QStringList({u"A"_s}));

        fixture.model->reloadCurrentPage();
        QVERIFY(!fixture.model->errorMessage());
        QVERIFY(fixture.model->currentPage()->content.isEmpty());
        QVERIFY(fixture.model->isStreaming());
    }

    void tableOfContents_data()
    {
        QTest::addColumn<bool>("fails");
        QTest::newRow("list") << false;
        QTest::newRow("failure") << true;
    }
    void tableOfContents()
    {
        QFETCH(bool, fails);
        ControllerFixture fixture;
        fixture.model->search(u"the history of the roman empire"_s);
        const QStringList sections = {u"Kings"_s, u"Republic"_s};
        fixture.claude.tocs.back().sink.finish(fails ? Result<QStringList>(Failure{u"lost"_s})
                                                     : Result<QStringList>(sections));
        QTRY_VERIFY(!fixture.model->tocIsLoading());
        QCOMPARE(fixture.model->streamingTOC(), fails ? QStringList() : sections);
        QCOMPARE(fixture.model->currentPage()->tableOfContents, fixture.model->streamingTOC());
        QVERIFY(!fixture.model->errorMessage());
        QVERIFY(fixture.model->isStreaming());
    }

    void newSearchSilencesTheOldOne()
    {
        ControllerFixture fixture;
        fixture.model->search(u"the history of the roman empire"_s);
        const auto old = fixture.claude.entries.back();
        const auto oldTOC = fixture.claude.tocs.back();
        old.sink.send(u"queued"_s);
        fixture.model->search(u"carthage"_s);
        QVERIFY(!old.stream);
        old.sink.send(u"late"_s);
        old.sink.finish(Failure{u"late"_s});
        oldTOC.sink.finish(QStringList({u"late"_s}));
        fixture.answer(u"A city."_s);
        QCOMPARE(fixture.model->streamingContent(), u"A city."_s);
        QVERIFY(fixture.model->streamingTOC().isEmpty());
        QVERIFY(!fixture.model->tocIsLoading());
        QVERIFY(!fixture.model->errorMessage());
    }

    void savedEntryReopensWithoutARequest()
    {
        ControllerFixture fixture;
        fixture.write(u"black holes"_s, u"Dense.\nSEE_ALSO_JSON: [\"Stars\"]"_s);
        fixture.write(u"carthage"_s);
        fixture.model->search(u" Black HOLES "_s);
        QCOMPARE(fixture.claude.entries.size(), 2U);
        QVERIFY(!fixture.model->isStreaming());
        QCOMPARE(fixture.model->streamingTitle(), u"Black Holes"_s);
        QCOMPARE(fixture.model->streamingContent(), u"Dense."_s);
        QCOMPARE(fixture.model->currentPage()->seeAlso, QStringList({u"Stars"_s}));
        QCOMPARE(fixture.model->session()->rootQuery, u"black holes"_s);
        QCOMPARE(fixture.model->searchHistory(), QStringList({u"Black HOLES"_s, u"carthage"_s}));
    }

    void sameQueryWhileOpenReopensItself()
    {
        ControllerFixture fixture;
        fixture.model->search(u"rome"_s);
        fixture.send(u"Raw, half"_s);
        fixture.model->search(u"ROME"_s);
        QCOMPARE(fixture.claude.entries.size(), 1U);
        QVERIFY(!fixture.model->isStreaming());
        QCOMPARE(fixture.model->streamingContent(), u"Raw, half"_s);
    }

    void reopeningKeepsAnErrorOnShow()
    {
        ControllerFixture fixture;
        fixture.write(u"rome"_s);
        fixture.model->search(u"carthage"_s);
        fixture.answer(QString(), Failure{u"It broke."_s});
        fixture.model->search(u"rome"_s);
        QCOMPARE(fixture.model->errorMessage(), u"It broke."_s);
    }

    void reopenedSectionSessionShowsItsRoot()
    {
        ControllerFixture fixture;
        fixture.writeArticle(u"the history of the roman empire"_s, {u"Kings"_s});
        fixture.model->navigateTo(u"Kings"_s);
        fixture.answer(u"Seven of them."_s);
        fixture.write(u"carthage"_s);
        fixture.model->search(u"the history of the roman empire"_s);
        QCOMPARE(fixture.model->streamingTitle(), u"The History Of The Roman Empire"_s);
        QCOMPARE(fixture.model->streamingContent(), u"Overview."_s);
        QCOMPARE(fixture.model->streamingTOC(), QStringList({u"Kings"_s}));
        QCOMPARE(fixture.trail(), QStringList({u"The History Of The Roman Empire"_s, u"Kings"_s}));
    }

    void emptySessionIsNeitherSavedNorReopened()
    {
        ControllerFixture fixture;
        fixture.write(u"rome"_s, u"Written."_s);
        fixture.model->newSearch();
        fixture.model->search(u"Rome"_s);
        QCOMPARE(fixture.model->streamingContent(), u"Written."_s);
        fixture.model->reloadCurrentPage(); // empty from now on
        fixture.model->newSearch();
        fixture.model->search(u"rome"_s);
        QCOMPARE(fixture.model->streamingContent(), u"Written."_s);
        QCOMPARE(fixture.claude.entries.size(), 2U);
    }

    void searchListHoldsFifteen()
    {
        ControllerFixture fixture;
        for (int i = 0; i < 16; ++i)
            fixture.model->search(u"query %1"_s.arg(i));
        fixture.model->search(u"QUERY 3"_s);
        QCOMPARE(fixture.model->searchHistory().size(), 15);
        QCOMPARE(fixture.model->searchHistory().first(), u"QUERY 3"_s);
        QCOMPARE(fixture.model->searchHistory().count(u"query 3"_s), 0);
        QCOMPARE(fixture.model->searchHistory().last(), u"query 1"_s);
        QCOMPARE(fixture.preferences.values[u"searchHistory"_s].toStringList(),
                 fixture.model->searchHistory());
    }

    void upgradeWritesAnArticle()
    {
        ControllerFixture fixture;
        fixture.write(u"stoicism"_s);
        fixture.model->upgradeToFullEntry();
        QCOMPARE(fixture.model->currentPage()->entryType, EntryType::full);
        QCOMPARE(fixture.claude.entries.back().request.prompt,
                 entryPrompt(EntryType::full, u"stoicism"_s));
        QCOMPARE(fixture.claude.tocs.back().topic, u"Stoicism"_s);
        QVERIFY(fixture.model->tocIsLoading());
        QCOMPARE(fixture.model->session()->pages.size(), 1);
    }

    void reloadOfSectionKeepsTheContents()
    {
        ControllerFixture fixture;
        fixture.writeArticle(u"the history of the roman empire"_s, {u"Kings"_s});
        fixture.model->navigateTo(u"Kings"_s);
        fixture.answer(u"Seven."_s);
        const QUuid page = fixture.model->currentPage()->id;
        fixture.model->upgradeToFullEntry(); // not for a section
        QCOMPARE(fixture.claude.entries.size(), 2U);
        fixture.model->reloadCurrentPage();
        QCOMPARE(fixture.claude.entries.size(), 3U);
        QCOMPARE(fixture.claude.entries.back().request.prompt,
                 sectionPrompt(u"Kings"_s, u"The History Of The Roman Empire"_s));
        QCOMPARE(fixture.claude.tocs.size(), 1U);
        QCOMPARE(fixture.model->currentPage()->id, page);
        QCOMPARE(fixture.model->streamingTOC(), QStringList({u"Kings"_s}));
    }

    void operationsWithoutASessionDoNothing()
    {
        ControllerFixture fixture;
        fixture.model->reloadCurrentPage();
        fixture.model->upgradeToFullEntry();
        QVERIFY(!fixture.model->session());
        QVERIFY(fixture.claude.entries.empty());
    }

    void observerMayCallBackAtAnyMoment_data()
    {
        QTest::addColumn<Change>("moment");
        QTest::newRow("session") << Change::session;
        QTest::newRow("piece") << Change::streamingPiece;
        QTest::newRow("contents") << Change::streamingTOC;
        QTest::newRow("end") << Change::isStreaming;
    }
    void observerMayCallBackAtAnyMoment()
    {
        QFETCH(Change, moment);
        for (const bool destroys : {false, true}) {
            ControllerFixture fixture;
            bool done = false;
            connect(fixture.model.get(), &AppViewModel::changed, this,
                    [&](AppViewModel::Changes what) {
                        if (!what.testFlag(moment) || std::exchange(done, true))
                            return;
                        if (destroys)
                            fixture.model.reset();
                        else
                            fixture.model->newSearch();
                    });
            fixture.model->search(u"the history of the roman empire"_s);
            fixture.claude.entries.back().sink.send(u"Text."_s);
            fixture.claude.entries.back().sink.finish(EntryStream::Completed());
            fixture.claude.tocs.back().sink.finish(QStringList({u"Kings"_s}));
            QTest::qWait(20);
            QVERIFY(done);
            QCOMPARE(fixture.model == nullptr, destroys);
            if (fixture.model) {
                QVERIFY(!fixture.model->session());
                QVERIFY(!fixture.model->isStreaming());
                QVERIFY(fixture.model->streamingContent().isEmpty());
            }
        }
    }
};

VARNO_TEST(QCoreApplication, SearchTest)
#include "SearchTest.moc"
