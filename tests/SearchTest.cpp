#include "core/Prompts.h"
#include "tests/ControllerFixture.h"
#include "tests/Table.h"
#include "tests/TestMain.h"

using namespace varno;
using namespace Qt::StringLiterals;

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

    void newEntry()
    {
        for (const QString& query : {u"photosynthesis"_s, u"black HOLES"_s, QString(article)}) {
            const InRow row(query);
            ControllerFixture fixture;
            AppViewModel& model = *fixture.model;
            model.search(u"  "_s + query + u"\n"_s);

            const EntryType type = detectEntryType(query);
            QVERIFY(model.isShowingEntry());
            QVERIFY(model.isStreaming());
            QCOMPARE(model.session()->rootQuery, query);
            QCOMPARE(model.session()->createdAt,
                     double(fixture.now.toSecsSinceEpoch() - 978307200));
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
    }

    void modelAndWebSearchOfTheMoment()
    {
        ControllerFixture fixture;
        fixture.model->setAIModel(AIModel::geminiFlash);
        fixture.model->setWebSearchEnabled(true);
        fixture.model->search(article);
        fixture.model->setAIModel(AIModel::opus); // concerns the next request
        QCOMPARE(fixture.gemini.entries.front().request.model, u"gemini-3.6-flash"_s);
        QVERIFY(fixture.gemini.entries.front().request.webSearch);
        QCOMPARE(fixture.gemini.tocs.front().model, u"gemini-3.6-flash"_s);
        QVERIFY(fixture.gemini.tocs.front().webSearch);
        QCOMPARE(fixture.gemini.tocs.front().topic, articleTitle);
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

    void finishedEntry()
    {
        for (const auto& [topics, seeAlso] : std::initializer_list<std::pair<QString, QStringList>>{
                 {u"[\"A\", \"B\"]\n</entry>"_s, {u"A"_s, u"B"_s}},
                 {u"[\"A\", B]</entry>"_s, {}},
                 {u"none ] [ none"_s, {}},
             }) {
            const InRow row(topics);
            ControllerFixture fixture;
            fixture.write(u"rome"_s, u" Text.\nSEE_ALSO_JSON: "_s + topics);
            QCOMPARE(fixture.model->streamingContent(), u"Text."_s);
            QCOMPARE(fixture.model->currentPage()->content, u"Text."_s);
            QCOMPARE(fixture.model->currentPage()->seeAlso, seeAlso);
            QVERIFY(!fixture.model->errorMessage());
        }
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

    void tableOfContents()
    {
        const QStringList sections = {u"Kings"_s, u"Republic"_s};
        for (const Result<QStringList>& outcome :
             {Result<QStringList>(sections), Result<QStringList>(Failure{u"lost"_s})}) {
            ControllerFixture fixture;
            fixture.model->search(article);
            fixture.claude.tocs.back().sink.finish(outcome);
            QTRY_VERIFY(!fixture.model->tocIsLoading());
            QCOMPARE(fixture.model->streamingTOC(),
                     outcome.index() == 0 ? sections : QStringList());
            QCOMPARE(fixture.model->currentPage()->tableOfContents, fixture.model->streamingTOC());
            QVERIFY(!fixture.model->errorMessage());
            QVERIFY(fixture.model->isStreaming());
        }
    }

    void newSearchSilencesTheOldOne()
    {
        ControllerFixture fixture;
        fixture.model->search(article);
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
        fixture.model->search(u"carthage"_s);
        fixture.answer(QString(), Failure{u"It broke."_s});
        fixture.model->search(u" Black HOLES "_s);
        QCOMPARE(fixture.claude.entries.size(), 2U);
        QVERIFY(!fixture.model->isStreaming());
        QCOMPARE(fixture.model->streamingTitle(), u"Black Holes"_s);
        QCOMPARE(fixture.model->streamingContent(), u"Dense."_s);
        QCOMPARE(fixture.model->currentPage()->seeAlso, QStringList({u"Stars"_s}));
        QCOMPARE(fixture.model->session()->rootQuery, u"black holes"_s);
        QCOMPARE(fixture.model->searchHistory(), QStringList({u"Black HOLES"_s, u"carthage"_s}));
        QCOMPARE(fixture.model->errorMessage(), u"It broke."_s); // stays on show
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

    void reopenedSectionSessionShowsItsRoot()
    {
        ControllerFixture fixture;
        fixture.writeArticle(article, {u"Kings"_s});
        fixture.openSection(u"Kings"_s);
        fixture.write(u"carthage"_s);
        fixture.model->search(article);
        QCOMPARE(fixture.model->streamingTitle(), articleTitle);
        QCOMPARE(fixture.model->streamingContent(), u"Overview."_s);
        QCOMPARE(fixture.model->streamingTOC(), QStringList({u"Kings"_s}));
        QCOMPARE(fixture.trail(), QStringList({articleTitle, u"Kings"_s}));
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
        fixture.writeArticle(article, {u"Kings"_s});
        fixture.openSection(u"Kings"_s);
        const QUuid page = fixture.model->currentPage()->id;
        fixture.model->upgradeToFullEntry(); // not for a section
        QCOMPARE(fixture.claude.entries.size(), 2U);
        fixture.model->reloadCurrentPage();
        QCOMPARE(fixture.claude.entries.size(), 3U);
        QCOMPARE(fixture.claude.entries.back().request.prompt,
                 sectionPrompt(u"Kings"_s, articleTitle));
        QCOMPARE(fixture.claude.tocs.size(), 1U);
        QCOMPARE(fixture.model->currentPage()->id, page);
        QCOMPARE(fixture.model->streamingTOC(), QStringList({u"Kings"_s}));
    }

    void observerMayCallBackAtAnyMoment()
    {
        for (const Change moment :
             {Change::session, Change::streamingPiece, Change::streamingTOC, Change::isStreaming}) {
            for (const bool destroys : {false, true}) {
                const InRow row(static_cast<quint32>(moment), destroys);
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
                fixture.model->search(article);
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
    }

private:
    using Change = AppViewModel::Change;
};

VARNO_TEST(QCoreApplication, SearchTest)
#include "SearchTest.moc"
