#include "core/Prompts.h"
#include "tests/ControllerFixture.h"
#include "tests/Table.h"
#include "tests/TestMain.h"

using namespace varno;
using namespace Qt::StringLiterals;

/// Sections, the trail, and the ways back.
class NavigationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sectionIsWrittenOnDemand()
    {
        ControllerFixture fixture;
        fixture.writeArticle(article, {u"Kings"_s, u"Republic"_s});
        fixture.model->navigateTo(u"Kings"_s);

        const Page* page = fixture.model->currentPage();
        QCOMPARE(page->title, u"Kings"_s);
        QCOMPARE(page->parentSectionName, u"Kings"_s);
        QCOMPARE(page->parentPageId, fixture.model->session()->rootPage()->id);
        QCOMPARE(page->entryType, EntryType::full);
        QCOMPARE(fixture.claude.entries.back().request.prompt,
                 sectionPrompt(u"Kings"_s, articleTitle));
        QCOMPARE(fixture.claude.tocs.size(), 1U);
        QVERIFY(!fixture.model->tocIsLoading());
        QCOMPARE(fixture.model->streamingTOC(), QStringList({u"Kings"_s, u"Republic"_s}));
        QVERIFY(fixture.model->isStreaming());
    }

    void writtenSectionOpensWithoutARequest()
    {
        ControllerFixture fixture;
        fixture.writeArticle(article, {u"Kings"_s, u"Republic"_s});
        fixture.openSection(u"Kings"_s, u"Seven of them."_s);
        fixture.openSection(u"Republic"_s);
        fixture.model->navigateTo(u"Kings"_s);
        QCOMPARE(fixture.claude.entries.size(), 3U);
        QCOMPARE(fixture.trail(),
                 QStringList({articleTitle, u"Kings"_s, u"Republic"_s, u"Kings"_s}));
        QCOMPARE(fixture.model->streamingTitle(), u"Kings"_s);
        QCOMPARE(fixture.model->streamingContent(), u"Seven of them."_s);
        fixture.model->navigateTo(u"kings"_s); // another one
        QCOMPARE(fixture.claude.entries.size(), 4U);
        fixture.model->jumpTo(*fixture.model->session()->rootPage());
        fixture.model->navigateTo(u"kings"_s); // not written yet
        QCOMPARE(fixture.claude.entries.size(), 5U);
        QCOMPARE(fixture.model->session()->pages.size(), 5);
    }

    void leavingAStreamKeepsItsRawText()
    {
        ControllerFixture fixture;
        fixture.model->search(article);
        fixture.send(u"Half <"_s);
        const QUuid root = fixture.model->currentPage()->id;
        fixture.model->navigateTo(u"Kings"_s);
        QVERIFY(!fixture.claude.entries.front().stream);
        QVERIFY(!fixture.model->tocIsLoading());
        QCOMPARE(fixture.model->session()->page(root)->content, u"Half <"_s);
    }

    void jumpCutsTheTrail()
    {
        ControllerFixture fixture;
        fixture.writeArticle(article, {u"Kings"_s, u"Republic"_s});
        for (const QString& section : {u"Kings"_s, u"Republic"_s, u"Kings"_s})
            fixture.openSection(section);
        // To the last occurrence of Kings, to Republic, to a page that is not there, to the root.
        const QList<QUuid> whole = fixture.model->session()->navigationHistory;
        for (const auto& [id, length] : std::initializer_list<std::pair<QUuid, int>>{
                 {whole[1], 4}, {whole[2], 3}, {QUuid::createUuid(), 3}, {whole[0], 1}}) {
            const InRow row(length);
            Page page;
            page.id = id;
            fixture.model->jumpTo(page);
            QCOMPARE(fixture.model->session()->navigationHistory, whole.first(length));
            QCOMPARE(fixture.model->streamingTitle(), fixture.model->currentPage()->title);
            QCOMPARE(fixture.model->streamingContent(), fixture.model->currentPage()->content);
            QCOMPARE(fixture.model->streamingTOC(), QStringList({u"Kings"_s, u"Republic"_s}));
        }
    }

    void backLeadsToTheRootAndOut()
    {
        ControllerFixture fixture;
        fixture.writeArticle(article, {u"Kings"_s, u"Republic"_s});
        fixture.openSection(u"Kings"_s);
        fixture.openSection(u"Republic"_s);
        fixture.model->setShowingFind(true);

        fixture.model->goBack();
        QCOMPARE(fixture.trail(), QStringList({articleTitle}));
        QCOMPARE(fixture.model->streamingContent(), u"Overview."_s);
        QVERIFY(fixture.model->isShowingEntry());

        fixture.model->goBack();
        QVERIFY(!fixture.model->isShowingEntry());
        QVERIFY(!fixture.model->isShowingFind());
        QVERIFY(!fixture.model->session());
        QVERIFY(fixture.model->streamingTitle().isEmpty());
        QVERIFY(fixture.model->streamingContent().isEmpty());
        QVERIFY(fixture.model->streamingTOC().isEmpty());

        fixture.model->search(article);
        QCOMPARE(fixture.model->session()->pages.size(), 3);
        QVERIFY(!fixture.model->isStreaming());
    }

    void newSearchClosesWithItsError()
    {
        ControllerFixture fixture;
        fixture.model->search(u"rome"_s);
        fixture.answer(u"Text."_s, Failure{u"It broke."_s});
        fixture.model->newSearch();
        QVERIFY(!fixture.model->errorMessage());
        QVERIFY(!fixture.model->session());
        QVERIFY(!fixture.model->isShowingEntry());
    }

    void withoutASessionNothingHappens()
    {
        ControllerFixture fixture;
        fixture.model->navigateTo(u"Kings"_s);
        fixture.model->jumpTo(Page());
        fixture.model->goBack();
        fixture.model->newSearch();
        fixture.model->reloadCurrentPage();
        fixture.model->upgradeToFullEntry();
        QVERIFY(!fixture.model->session());
        QVERIFY(fixture.claude.entries.empty());
    }

    /// What the controller never asks of a session, a file may.
    void sessionWithPagesThatAreNotThere()
    {
        Session session;
        QVERIFY(!session.currentPage());
        QVERIFY(!session.rootPage());
        session.revisit(QUuid::createUuid());
        QVERIFY(session.navigationHistory.isEmpty());
        session.navigationHistory = {QUuid::createUuid()};
        QVERIFY(!session.currentPage());
        QVERIFY(!session.rootPage());

        Page section;
        section.id = QUuid::createUuid();
        section.content = u"Text."_s;
        section.parentPageId = QUuid::createUuid();
        section.parentSectionName = u"Kings"_s;
        session.push(section);
        section.content = u"Other text."_s;
        session.push(section);
        QCOMPARE(session.navigationHistory.size(), 3);
        const Page* page = session.cachedSectionPage(*section.parentPageId, u"Kings"_s);
        QVERIFY(page && page->content == section.content);
        QVERIFY(!session.cachedSectionPage(QUuid::createUuid(), u"Kings"_s));
    }
};

VARNO_TEST(QCoreApplication, NavigationTest)
#include "NavigationTest.moc"
