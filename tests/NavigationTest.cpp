#include "core/Prompts.h"
#include "tests/ControllerFixture.h"

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

constexpr auto article = "the history of the roman empire"_L1;
constexpr auto title = "The History Of The Roman Empire"_L1;

void openWritten(ControllerFixture& fixture, const QString& section)
{
    const std::size_t before = fixture.claude.entries.size();
    fixture.model->navigateTo(section);
    if (fixture.claude.entries.size() > before)
        fixture.answer(section + u" text."_s);
}

} // namespace

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
        QCOMPARE(fixture.claude.entries.back().request.prompt, sectionPrompt(u"Kings"_s, title));
        QCOMPARE(fixture.claude.tocs.size(), 1U);
        QVERIFY(!fixture.model->tocIsLoading());
        QCOMPARE(fixture.model->streamingTOC(), QStringList({u"Kings"_s, u"Republic"_s}));
        QVERIFY(fixture.model->isStreaming());
    }

    void writtenSectionOpensWithoutARequest()
    {
        ControllerFixture fixture;
        fixture.writeArticle(article, {u"Kings"_s, u"Republic"_s});
        openWritten(fixture, u"Kings"_s);
        openWritten(fixture, u"Republic"_s);
        const std::size_t requests = fixture.claude.entries.size();
        fixture.model->navigateTo(u"Kings"_s);
        QCOMPARE(fixture.claude.entries.size(), requests);
        QCOMPARE(fixture.trail(), QStringList({title, u"Kings"_s, u"Republic"_s, u"Kings"_s}));
        QCOMPARE(fixture.model->streamingTitle(), u"Kings"_s);
        QCOMPARE(fixture.model->streamingContent(), u"Kings text."_s);
        fixture.model->navigateTo(u"kings"_s);
        QCOMPARE(fixture.claude.entries.size(), requests + 1);
    }

    void sectionWithoutTextIsWrittenAnew()
    {
        ControllerFixture fixture;
        fixture.writeArticle(article, {u"Kings"_s});
        fixture.model->navigateTo(u"Kings"_s);
        const QUuid empty = fixture.model->currentPage()->id;
        fixture.model->goBack();
        fixture.model->navigateTo(u"Kings"_s);
        QVERIFY(fixture.model->currentPage()->id != empty);
        QCOMPARE(fixture.model->session()->pages.size(), 3);
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

    void jumpCutsTheTrail_data()
    {
        QTest::addColumn<int>("position"); // on the trail root, Kings, Republic, Kings
        QTest::addColumn<int>("length");
        QTest::newRow("to the root") << 0 << 1;
        QTest::newRow("to its last occurrence") << 1 << 4;
        QTest::newRow("to the middle") << 2 << 3;
    }
    void jumpCutsTheTrail()
    {
        QFETCH(int, position);
        ControllerFixture fixture;
        fixture.writeArticle(article, {u"Kings"_s, u"Republic"_s});
        for (const QString& section : {u"Kings"_s, u"Republic"_s, u"Kings"_s})
            openWritten(fixture, section);
        const Session& session = *fixture.model->session();
        fixture.model->jumpTo(*session.page(session.navigationHistory.at(position)));
        QTEST(int(session.navigationHistory.size()), "length");
        QCOMPARE(fixture.model->streamingTitle(), fixture.model->currentPage()->title);
        QCOMPARE(fixture.model->streamingContent(), fixture.model->currentPage()->content);
        QCOMPARE(fixture.model->streamingTOC(), QStringList({u"Kings"_s, u"Republic"_s}));
    }

    void jumpToAStrangerStaysPut()
    {
        ControllerFixture fixture;
        fixture.writeArticle(article, {u"Kings"_s});
        openWritten(fixture, u"Kings"_s);
        Page stranger;
        stranger.id = QUuid::createUuid();
        fixture.model->jumpTo(stranger);
        QCOMPARE(fixture.trail(), QStringList({title, u"Kings"_s}));
    }

    void backLeadsToTheRootAndOut()
    {
        ControllerFixture fixture;
        fixture.writeArticle(article, {u"Kings"_s, u"Republic"_s});
        openWritten(fixture, u"Kings"_s);
        openWritten(fixture, u"Republic"_s);
        fixture.model->setShowingFind(true);

        fixture.model->goBack();
        QCOMPARE(fixture.trail(), QStringList({title}));
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
        QVERIFY(!fixture.model->session());
        QVERIFY(fixture.claude.entries.empty());
    }
};

VARNO_TEST(QCoreApplication, NavigationTest)
#include "NavigationTest.moc"
