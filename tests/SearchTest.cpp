#include "core/Prompts.h"
#include "tests/ControllerFixture.h"
#include "tests/Test.h"

/// Searching, streaming, reloading.
class SearchTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void newEntry()
    {
        for (const auto& [query, title] :
             Rows<QString, QString>{{u"photosynthesis"_s, u"Photosynthesis"_s},
                                    {u"black HOLES"_s, u"Black Holes"_s},
                                    {article, articleTitle}}) {
            const InRow row(query);
            ControllerFixture f;
            const AppViewModel& model = *f.model;
            f.model->search(u"  "_s + query + u"\n"_s);

            const EntryType type = detectEntryType(query);
            QVERIFY(model.isShowingEntry());
            QVERIFY(model.isStreaming());
            QCOMPARE(model.session()->rootQuery, query);
            QCOMPARE(model.session()->createdAt, double(f.now.toSecsSinceEpoch() - 978307200));
            QCOMPARE(model.currentPage()->entryType, type);
            QCOMPARE(model.currentPage()->title, title);
            QCOMPARE(model.streamingTitle(), title);
            QCOMPARE(model.tocIsLoading(), type == EntryType::full);

            QCOMPARE(f.claude.entries.size(), 1U);
            const ModelRequest& request = f.claude.entries.front().request;
            QCOMPARE(request.prompt, entryPrompt(type, query));
            QCOMPARE(request.systemPrompt, entrySystemPrompt());
            QCOMPARE(request.model, u"claude-sonnet-5"_s);
            QVERIFY(!request.webSearch);
            QCOMPARE(f.claude.tocs.size(), type == EntryType::full ? 1U : 0U);
            QVERIFY(f.gemini.entries.empty());
        }
    }

    void modelAndWebSearchOfTheMoment()
    {
        ControllerFixture f;
        f.model->setAIModel(AIModel::geminiFlash);
        f.model->setWebSearchEnabled(true);
        f.model->search(article);
        f.model->setAIModel(AIModel::opus); // concerns the next request
        QCOMPARE(f.gemini.entries.front().request.model, u"gemini-3.6-flash"_s);
        QVERIFY(f.gemini.entries.front().request.webSearch);
        QCOMPARE(f.gemini.tocs.front().model, u"gemini-3.6-flash"_s);
        QVERIFY(f.gemini.tocs.front().webSearch);
        QCOMPARE(f.gemini.tocs.front().topic, articleTitle);
        f.model->reloadCurrentPage();
        QCOMPARE(f.claude.entries.front().request.model, u"claude-opus-4-8"_s);
    }

    void finishedEntry()
    {
        for (const auto& [topics, seeAlso] :
             Rows<QString, QStringList>{{u"[\"A\", \"B\"]\n</entry>"_s, {u"A"_s, u"B"_s}},
                                        {u"[\"A\", B]</entry>"_s, {}},
                                        {u"none ] [ none"_s, {}}}) {
            const InRow row(topics);
            ControllerFixture f;
            f.write(u"rome"_s, u" Text.\nSEE_ALSO_JSON: "_s + topics);
            QCOMPARE(f.model->streamingContent(), u"Text."_s);
            QCOMPARE(f.model->currentPage()->content, u"Text."_s);
            QCOMPARE(f.model->currentPage()->seeAlso, seeAlso);
            QVERIFY(!f.model->errorMessage());
        }
    }

    void failureKeepsWhatArrived()
    {
        ControllerFixture f;
        f.model->search(u"rome"_s);
        f.announced = {};
        f.send(u"Half a text"_s);
        f.send(u".\nSEE_ALSO"_s);
        QCOMPARE(f.announced, AppViewModel::Changes(Change::streamingPiece));
        QCOMPARE(f.model->currentPage()->content, u"Half a text.\nSEE_ALSO"_s);
        QVERIFY(f.model->isStreaming());
        f.answer(u"_JSON: [\"A\"]"_s, Failure{u"It broke."_s});
        QCOMPARE(f.model->errorMessage(), u"It broke."_s);
        QCOMPARE(f.model->currentPage()->content, u"Half a text."_s);
        QCOMPARE(f.model->currentPage()->seeAlso, QStringList({u"A"_s}));

        f.model->reloadCurrentPage();
        QVERIFY(!f.model->errorMessage());
        QVERIFY(f.model->currentPage()->content.isEmpty());
        QVERIFY(f.model->isStreaming());
    }

    void tableOfContents()
    {
        ControllerFixture f;
        for (const QStringList& sections : {QStringList({u"Kings"_s, u"Republic"_s}), {}}) {
            f.model->search(article);
            const auto& sink = f.claude.tocs.back().sink;
            sections.isEmpty() ? sink.finish(Failure{u"lost"_s}) : sink.finish(sections);
            QTRY_VERIFY(!f.model->tocIsLoading());
            QCOMPARE(f.model->streamingTOC(), sections);
            QCOMPARE(f.model->currentPage()->tableOfContents, sections);
            QVERIFY(!f.model->errorMessage());
            QVERIFY(f.model->isStreaming());
        }
    }

    void newSearchSilencesTheOldOne()
    {
        ControllerFixture f;
        f.model->search(article);
        const auto old = f.claude.entries.back();
        const auto oldTOC = f.claude.tocs.back();
        old.sink.send(u"queued"_s);
        f.model->search(u"carthage"_s);
        QVERIFY(!old.stream);
        old.sink.send(u"late"_s);
        old.sink.finish(Failure{u"late"_s});
        oldTOC.sink.finish(QStringList({u"late"_s}));
        f.answer(u"A city."_s);
        QCOMPARE(f.model->streamingContent(), u"A city."_s);
        QVERIFY(f.model->streamingTOC().isEmpty());
        QVERIFY(!f.model->tocIsLoading());
        QVERIFY(!f.model->errorMessage());
    }

    void savedEntryReopensWithoutARequest()
    {
        ControllerFixture f;
        f.writeArticle(article, {u"Kings"_s});
        f.openSection(u"Kings"_s);
        f.model->search(u"carthage"_s);
        f.answer(QString(), Failure{u"It broke."_s});
        const QString again = u' ' + QString(article).toUpper();
        f.model->search(again);
        QCOMPARE(f.claude.entries.size(), 3U);
        QVERIFY(!f.model->isStreaming());
        QCOMPARE(f.model->streamingTitle(), articleTitle);
        QCOMPARE(f.model->streamingContent(), u"Overview."_s);
        QCOMPARE(f.model->streamingTOC(), QStringList({u"Kings"_s}));
        QCOMPARE(f.trail(), QStringList({articleTitle, u"Kings"_s}));
        QCOMPARE(f.model->session()->rootQuery, article);
        QCOMPARE(f.model->searchHistory(), QStringList({again.trimmed(), u"carthage"_s}));
        QCOMPARE(f.model->errorMessage(), u"It broke."_s); // stays on show
        f.model->search(u"sparta"_s);
        QVERIFY(!f.model->errorMessage());
        QVERIFY(f.model->streamingTOC().isEmpty());
    }

    void emptySessionIsNeitherSavedNorReopened()
    {
        ControllerFixture f;
        f.model->search(u"rome"_s);
        f.send(u"Raw, half"_s);
        f.model->search(u"ROME"_s); // reopens itself, as it is
        QCOMPARE(f.claude.entries.size(), 1U);
        QVERIFY(!f.model->isStreaming());
        QCOMPARE(f.model->streamingContent(), u"Raw, half"_s);
        f.model->reloadCurrentPage(); // empty from now on
        f.model->newSearch();
        f.model->search(u"Rome"_s);
        QCOMPARE(f.model->streamingContent(), u"Raw, half"_s);
    }

    void searchListHoldsFifteen()
    {
        ControllerFixture f;
        for (int i = 0; i < 16; ++i)
            f.model->search(u"query %1"_s.arg(i));
        f.model->search(u"QUERY 3"_s);
        QCOMPARE(f.model->searchHistory().size(), 15);
        QCOMPARE(f.model->searchHistory().first(), u"QUERY 3"_s);
        QCOMPARE(f.model->searchHistory().count(u"query 3"_s), 0);
        QCOMPARE(f.model->searchHistory().last(), u"query 1"_s);
        QCOMPARE(f.preferences.values[u"searchHistory"_s].toStringList(), f.model->searchHistory());
        f.announced = {};
        f.model->search(u" \n\t\u2003 "_s); // a blank one changes nothing
        QVERIFY(!f.announced);
        QCOMPARE(f.model->session()->rootQuery, u"QUERY 3"_s);
    }

    void upgradeAndReload()
    {
        ControllerFixture f;
        f.write(u"stoicism"_s);
        f.model->upgradeToFullEntry();
        QCOMPARE(f.model->currentPage()->entryType, EntryType::full);
        QCOMPARE(f.claude.entries.back().request.prompt,
                 entryPrompt(EntryType::full, u"stoicism"_s));
        QCOMPARE(f.claude.tocs.back().topic, u"Stoicism"_s);
        QVERIFY(f.model->tocIsLoading());
        QCOMPARE(f.model->session()->pages.size(), 1);
        f.claude.tocs.back().sink.finish(QStringList({u"Kings"_s}));
        f.answer(u"Text."_s);
        f.openSection(u"Kings"_s);
        f.model->upgradeToFullEntry(); // not for a section
        QCOMPARE(f.claude.entries.size(), 3U);
        f.model->reloadCurrentPage();
        QCOMPARE(f.claude.entries.size(), 4U);
        QCOMPARE(f.claude.entries.back().request.prompt, sectionPrompt(u"Kings"_s, u"Stoicism"_s));
        QCOMPARE(f.claude.tocs.size(), 1U);
        QCOMPARE(f.trail(), QStringList({u"Stoicism"_s, u"Kings"_s}));
        QCOMPARE(f.model->streamingTOC(), QStringList({u"Kings"_s}));
    }

    void observerMayCallBackAtAnyMoment()
    {
        for (const Change moment :
             {Change::session, Change::streamingPiece, Change::streamingTOC, Change::isStreaming}) {
            for (const bool destroys : {false, true}) {
                const InRow row(static_cast<quint32>(moment), destroys);
                ControllerFixture f;
                bool done = false;
                connect(f.model.get(), &AppViewModel::changed, this,
                        [&](AppViewModel::Changes what) {
                            if (what.testFlag(moment) && !std::exchange(done, true))
                                destroys ? f.model.reset() : f.model->newSearch();
                        });
                f.model->search(article);
                f.claude.entries.back().sink.send(u"Text."_s);
                f.claude.entries.back().sink.finish(EntryStream::Completed());
                f.claude.tocs.back().sink.finish(QStringList({u"Kings"_s}));
                QTest::qWait(20);
                QVERIFY(done);
                QVERIFY(destroys || !f.model->session());
                QVERIFY(destroys || !f.model->isStreaming());
                QVERIFY(destroys || f.model->streamingContent().isEmpty());
            }
        }
    }

private:
    using Change = AppViewModel::Change;
};

VARNO_TEST(QCoreApplication, SearchTest)
#include "SearchTest.moc"
