#include "core/Prompts.h"
#include "tests/ControllerFixture.h"
#include "tests/Test.h"

/// Sections, the trail, and the ways back.
class NavigationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sectionIsWrittenOnDemand()
    {
        ControllerFixture f;
        const QStringList sections = {u"Kings"_s, u"Republic"_s};
        f.model->search(article);
        f.claude.tocs.back().sink.finish(sections);
        f.send(u"Half <"_s);
        f.model->navigateTo(u"Kings"_s);

        const Page* root = f.model->session()->rootPage();
        const Page* page = f.model->currentPage();
        QVERIFY(!f.claude.entries.front().stream); // left, with its raw text
        QCOMPARE(root->content, u"Half <"_s);
        QCOMPARE(page->title, u"Kings"_s);
        QCOMPARE(page->parentSectionName, u"Kings"_s);
        QCOMPARE(page->parentPageId, root->id);
        QCOMPARE(page->entryType, EntryType::full);
        QCOMPARE(f.claude.entries.back().request.prompt, sectionPrompt(u"Kings"_s, articleTitle));
        QCOMPARE(f.claude.tocs.size(), 1U);
        QCOMPARE(f.model->streamingTOC(), sections);
        QVERIFY(f.model->isStreaming());
        f.model->search(u"why is the sea so salty"_s);
        f.model->navigateTo(u"Rivers"_s);
        QVERIFY(!f.model->tocIsLoading());
    }

    void writtenSectionOpensWithoutARequest()
    {
        ControllerFixture f;
        f.writeArticle(article, {u"Kings"_s, u"Republic"_s});
        f.openSection(u"Kings"_s, u"Seven of them."_s);
        f.openSection(u"Republic"_s);
        f.model->navigateTo(u"Kings"_s);
        QCOMPARE(f.claude.entries.size(), 3U);
        QCOMPARE(f.trail(), QStringList({articleTitle, u"Kings"_s, u"Republic"_s, u"Kings"_s}));
        QCOMPARE(f.model->streamingTitle(), u"Kings"_s);
        QCOMPARE(f.model->streamingContent(), u"Seven of them."_s);
        f.model->navigateTo(u"kings"_s); // another one
        QCOMPARE(f.claude.entries.size(), 4U);
        f.model->jumpTo(*f.model->session()->rootPage());
        f.model->navigateTo(u"kings"_s); // not written yet
        QCOMPARE(f.claude.entries.size(), 5U);
        QCOMPARE(f.model->session()->pages.size(), 5);
    }

    void jumpCutsTheTrail()
    {
        ControllerFixture f;
        f.writeArticle(article, {u"Kings"_s, u"Republic"_s});
        for (const QString& section : {u"Kings"_s, u"Republic"_s, u"Kings"_s})
            f.openSection(section);
        // To the last occurrence of Kings, to Republic, to a page that is not there, to the root.
        const QList<QUuid> whole = f.model->session()->navigationHistory;
        for (const auto& [id, length] : Rows<QUuid, int>{
                 {whole[1], 4}, {whole[2], 3}, {QUuid::createUuid(), 3}, {whole[0], 1}}) {
            const InRow row(length);
            Page page;
            page.id = id;
            f.model->jumpTo(page);
            QCOMPARE(f.model->session()->navigationHistory, whole.first(length));
            QCOMPARE(f.model->streamingTitle(), f.model->currentPage()->title);
            QCOMPARE(f.model->streamingContent(), f.model->currentPage()->content);
            QCOMPARE(f.model->streamingTOC(), QStringList({u"Kings"_s, u"Republic"_s}));
        }
    }

    void backLeadsToTheRootAndOut()
    {
        ControllerFixture f;
        f.writeArticle(article, {u"Kings"_s, u"Republic"_s});
        f.openSection(u"Kings"_s);
        f.openSection(u"Republic"_s);
        f.model->setShowingFind(true);

        f.model->goBack();
        QCOMPARE(f.trail(), QStringList({articleTitle}));
        QCOMPARE(f.model->streamingContent(), u"Overview."_s);
        QVERIFY(f.model->isShowingEntry());

        f.model->goBack();
        QVERIFY(!f.model->isShowingEntry());
        QVERIFY(!f.model->isShowingFind());
        QVERIFY(!f.model->session());
        QVERIFY(f.model->streamingTitle().isEmpty());
        QVERIFY(f.model->streamingContent().isEmpty());
        QVERIFY(f.model->streamingTOC().isEmpty());

        f.model->search(article); // it was saved
        QCOMPARE(f.model->session()->pages.size(), 3);
    }

    void withoutASessionNothingHappens()
    {
        ControllerFixture f;
        f.model->search(u"rome"_s);
        f.answer(u"Text."_s, Failure{u"It broke."_s});
        f.model->newSearch();
        QVERIFY(!f.model->errorMessage());
        f.model->navigateTo(u"Kings"_s);
        f.model->jumpTo(Page());
        f.model->goBack();
        f.model->newSearch();
        f.model->reloadCurrentPage();
        f.model->upgradeToFullEntry();
        QVERIFY(!f.model->session());
        QCOMPARE(f.claude.entries.size(), 1U);
    }

    /// What the controller never asks of a session, a file may.
    void sessionWithPagesThatAreNotThere()
    {
        Session session;
        session.revisit(QUuid::createUuid());
        QVERIFY(!session.currentPage() && !session.rootPage());
        session.navigationHistory = {QUuid::createUuid()};
        QVERIFY(!session.currentPage() && !session.rootPage());
    }
};

VARNO_TEST(QCoreApplication, NavigationTest)
#include "NavigationTest.moc"
