#include "reader/BreadcrumbTrail.h"
#include "reader/TOCEntry.h"
#include "tests/EntryScreen.h"

#include <QHelpEvent>
#include <QToolTip>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

constexpr auto title = "The History Of The Roman Empire"_L1;

using Setup = std::function<void(Screen&)>;

void streamNothing(Screen& screen)
{
    screen.model->search(article);
}
void finishDefinition(Screen& screen)
{
    screen.write(u"rome"_s, u"Text."_s + relatedTopicsLine);
}
void finishArticle(Screen& screen)
{
    screen.writeArticle(article, {u"Kings"_s, u"Republic"_s, u"Caesars"_s});
}
void openSection(Screen& screen)
{
    finishArticle(screen);
    screen.model->navigateTo(u"Republic"_s);
    screen.answer(u"Consuls."_s);
}
void fail(Screen& screen)
{
    screen.model->search(u"rome"_s);
    screen.answer(u"Text."_s + relatedTopicsLine, Failure{u"It broke."_s});
}

} // namespace

class EntryViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void frameOfTheScreen()
    {
        Screen screen;
        finishArticle(screen);
        screen.model->setShowingFind(true);
        QTRY_COMPARE(screen.part<FindBar>().width(), 700); // laid out

        const QRect breadcrumbs = screen.place(screen.part<BreadcrumbBar>());
        const QRect find = screen.place(screen.part<FindBar>());
        const QRect sidebar = screen.place(screen.part<TOCSidebarView>());
        const QRect divider = screen.place(screen.part<ResizeDivider>());
        const QRect column = screen.place(screen.part<ReadingColumn>());
        QCOMPARE(breadcrumbs.topLeft(), QPoint(0, 0));
        QCOMPARE(find.top(), breadcrumbs.bottom() + 1);
        QCOMPARE(sidebar.top(), find.bottom() + 1);
        QCOMPARE(sidebar.bottom(), 499);
        QCOMPARE(sidebar.width(), 200);
        QCOMPARE(divider.left(), 200);
        QCOMPARE(column, QRect(QPoint(divider.right() + 1, sidebar.top()), QPoint(699, 499)));

        QCOMPARE(screen.place(*screen.button(u"New search (⌘K)"_s)).left(), 20);
        QCOMPARE(screen.place(*screen.button(u"Settings"_s)).right(), 679);
        const QRect close =
            screen.place(*screen.part<FindBar>().findChildren<PlainButton*>().last());
        QCOMPARE(close, QRect(680 - 22, find.top() + 8, 22, 22));
        QCOMPARE(find.height(), 38);
    }

    void gapsOfTheColumn_data()
    {
        QTest::addColumn<Setup>("setup");
        QTest::addColumn<QByteArray>("upper");
        QTest::addColumn<QByteArray>("lower");
        QTest::addColumn<int>("gap");
        using Name = QByteArray;
        const Name header = "varno::EntryHeader";
        const Name text = "varno::MarkdownContentView";
        QTest::newRow("text") << Setup(&finishDefinition) << header << text << 20;
        QTest::newRow("cursor") << Setup(&streamNothing) << text << Name("varno::BlinkingCursor")
                                << 4;
        QTest::newRow("offer") << Setup(&finishDefinition) << text << Name("varno::FullEntryButton")
                               << 24;
        QTest::newRow("topics below the offer")
            << Setup(&finishDefinition) << Name("varno::FullEntryButton")
            << Name("varno::RelatedTopics") << 32;
        QTest::newRow("error") << Setup(&fail) << header << Name("varno::ErrorPanel") << 40;
    }
    void gapsOfTheColumn()
    {
        QFETCH(Setup, setup);
        QFETCH(QByteArray, upper);
        QFETCH(QByteArray, lower);
        QFETCH(int, gap);
        Screen screen;
        setup(screen);
        const auto named = [&](const QByteArray& name) {
            const QList<QWidget*> all = screen.view.findChildren<QWidget*>();
            return screen.place(**std::ranges::find_if(all, [&](const QWidget* widget) {
                return widget->metaObject()->className() == name;
            }));
        };
        QTRY_COMPARE(named(lower).top() - named(upper).bottom() - 1, gap);
        const QPoint column = screen.place(screen.part<ReadingColumn>()).topLeft();
        QCOMPARE(named("varno::EntryHeader").topLeft() - column, QPoint(36, 28));
    }

    void header()
    {
        Screen screen;
        screen.write(u"straße"_s);
        QVERIFY(screen.showsText(u"STRASSE"_s));
        QTRY_VERIFY(screen.part<EntryHeader>().height() > 30);
        const QRect name = screen.part<EntryHeader>().findChild<ThemedText*>()->geometry();
        const QRect rule = screen.part<EntryHeader>().findChild<Rule*>()->geometry();
        QCOMPARE(rule.top() - name.bottom() - 1, 4);
        QCOMPARE(rule.height(), 1);
        QCOMPARE(rule.width(), screen.part<ReadingColumn>().viewport()->width() - 72);
    }

    void whatTheColumnShows_data()
    {
        QTest::addColumn<Setup>("setup");
        QTest::addColumn<bool>("text");
        QTest::addColumn<bool>("cursor");
        QTest::addColumn<bool>("status");
        QTest::addColumn<bool>("fullEntry");
        QTest::addColumn<bool>("topics");
        QTest::addColumn<bool>("error");
        const auto streamSome = [](Screen& screen) {
            screen.model->search(u"rome"_s);
            screen.send(u"Te"_s);
        };
        const auto topicsWhileReloading = [](Screen& screen) {
            finishDefinition(screen);
            screen.model->reloadCurrentPage();
        };
        QTest::newRow("no page") << Setup([](Screen&) {}) << true << false << false << false
                                 << false << false;
        QTest::newRow("waiting") << Setup(&streamNothing) << true << true << true << false << false
                                 << false;
        QTest::newRow("writing") << Setup(streamSome) << true << true << false << false << false
                                 << false;
        QTest::newRow("definition")
            << Setup(&finishDefinition) << true << false << false << true << true << false;
        QTest::newRow("reloading")
            << Setup(topicsWhileReloading) << true << true << true << false << false << false;
        QTest::newRow("article") << Setup(&finishArticle) << true << false << false << false
                                 << false << false;
        QTest::newRow("section") << Setup(&openSection) << true << false << false << false << false
                                 << false;
        const auto answerNothing = [](Screen& screen) { screen.write(u"rome"_s, QString()); };
        QTest::newRow("no text") << Setup(answerNothing) << true << false << false << true << false
                                 << true;
        QTest::newRow("failure") << Setup(&fail) << false << false << false << false << false
                                 << true;
    }
    void whatTheColumnShows()
    {
        QFETCH(Setup, setup);
        Screen screen;
        setup(screen);
        QTRY_COMPARE(screen.shownLength(), screen.model->streamingContent().size());
        QTEST(screen.part<MarkdownContentView>().isVisible(), "text");
        QTEST(screen.part<BlinkingCursor>().isVisible(), "cursor");
        QTEST(screen.showsText(u"Getting the most accurate information…"_s), "status");
        QTEST(screen.part<FullEntryButton>().isVisible(), "fullEntry");
        QTEST(screen.part<RelatedTopics>().isVisible(), "topics");
        QTEST(screen.part<ErrorPanel>().isVisible(), "error");
    }

    void sidebar_data()
    {
        QTest::addColumn<Setup>("setup");
        QTest::addColumn<bool>("shown");
        QTest::addColumn<bool>("placeholders");
        const auto failContents = [](Screen& screen) {
            streamNothing(screen);
            screen.claude.tocs.back().sink.finish(Failure{u"No contents."_s});
            QTRY_VERIFY(!screen.model->tocIsLoading());
        };
        const auto endWithoutContents = [failContents](Screen& screen) {
            failContents(screen);
            screen.answer(u"Text."_s);
        };
        const auto leave = [](Screen& screen) {
            finishArticle(screen);
            screen.model->newSearch();
        };
        QTest::newRow("no page") << Setup([](Screen&) {}) << false << false;
        QTest::newRow("definition") << Setup(&finishDefinition) << false << false;
        QTest::newRow("contents are loading") << Setup(&streamNothing) << true << true;
        QTest::newRow("contents failed, text comes") << Setup(failContents) << true << false;
        QTest::newRow("contents failed, text is there")
            << Setup(endWithoutContents) << false << false;
        QTest::newRow("article") << Setup(&finishArticle) << true << false;
        QTest::newRow("section") << Setup(&openSection) << true << false;
        QTest::newRow("closed") << Setup(leave) << false << false;
    }
    void sidebar()
    {
        QFETCH(Setup, setup);
        Screen screen;
        setup(screen);
        QTEST(screen.part<TOCSidebarView>().isVisible(), "shown");
        QTEST(screen.part<ResizeDivider>().isVisible(), "shown");
        QTEST(screen.part<LoadingPlaceholders>().isVisible(), "placeholders");
    }

    void placeholders()
    {
        Screen screen;
        streamNothing(screen);
        QTRY_VERIFY(screen.part<LoadingPlaceholders>().height() > 100);
        const QList<PlaceholderBar*> bars = screen.view.findChildren<PlaceholderBar*>();
        QCOMPARE(bars.size(), 6);
        for (qsizetype i = 0; i < bars.size(); ++i) {
            const QRect bar = bars.at(i)->geometry();
            QCOMPARE(bar.topLeft(), QPoint(16, bars.at(0)->y() + int(i) * 20));
            QCOMPARE(bar.height(), 10);
        }
    }

    void divider_data()
    {
        QTest::addColumn<QList<QList<int>>>("drags"); // each of them: where the pointer is led
        QTest::addColumn<int>("width");
        using Drags = QList<QList<int>>;
        QTest::newRow("wider") << Drags{{30, 50}} << 250;
        QTest::newRow("measured from the start") << Drags{{500, 40}} << 240;
        QTest::newRow("at most") << Drags{{200}} << 340;
        QTest::newRow("at least") << Drags{{-100}} << 140;
        QTest::newRow("the next one starts from there") << Drags{{-20}, {50}} << 230;
    }
    void divider()
    {
        QFETCH(QList<QList<int>>, drags);
        Screen screen;
        finishArticle(screen);
        auto& divider = screen.part<ResizeDivider>();
        QCOMPARE(divider.cursor().shape(), Qt::SplitHCursor);
        for (const QList<int>& drag : drags) {
            QTRY_COMPARE(divider.x(), screen.part<TOCSidebarView>().width());
            const int start = divider.mapTo(&screen.window, QPoint(2, 9)).x();
            QTest::mousePress(&divider, Qt::LeftButton, {}, {2, 9});
            for (const int distance : drag) {
                const QPoint position =
                    divider.mapFrom(&screen.window, QPoint(start + distance, 100));
                QMouseEvent move(QEvent::MouseMove, position, divider.mapToGlobal(position),
                                 Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
                QCoreApplication::sendEvent(&divider, &move);
                QCoreApplication::processEvents(); // the divider moves along
            }
            QTest::mouseRelease(&divider, Qt::LeftButton);
        }
        QTEST(screen.part<TOCSidebarView>().width(), "width");
    }

    void contents()
    {
        Screen screen;
        openSection(screen);
        const QList<TOCEntry*> entries = screen.view.findChildren<TOCEntry*>();
        QCOMPARE(entries.size(), 3);
        QVERIFY(!entries.at(0)->isActive());
        QVERIFY(entries.at(1)->isActive());
        QTest::mouseClick(entries.at(2), Qt::LeftButton);
        QCOMPARE(screen.model->currentPage()->title, u"Caesars"_s);
        QVERIFY(!entries.at(1)->isActive());
        QVERIFY(entries.at(2)->isActive());
    }

    void contentsByKeyboard()
    {
        Screen screen;
        finishArticle(screen);
        const QList<TOCEntry*> entries = screen.view.findChildren<TOCEntry*>();
        for (int i = 0; i < 20 && !entries.contains(QApplication::focusWidget()); ++i)
            screen.key(Qt::Key_Tab);
        QVERIFY(entries.at(0)->hasFocus());
        screen.key(Qt::Key_Down);
        QVERIFY(entries.at(1)->hasFocus());
        screen.key(Qt::Key_End);
        screen.key(Qt::Key_Down);
        QVERIFY(entries.at(2)->hasFocus());
        screen.key(Qt::Key_Tab);
        QVERIFY(!entries.contains(QApplication::focusWidget()));
        screen.key(Qt::Key_Backtab);
        QVERIFY(entries.at(2)->hasFocus());
        screen.key(Qt::Key_Home);
        screen.key(Qt::Key_Return);
        QCOMPARE(screen.model->currentPage()->title, u"Kings"_s);
    }

    void breadcrumbs()
    {
        Screen screen;
        finishArticle(screen);
        QVERIFY(!screen.button(title)); // here we are
        screen.model->navigateTo(u"Kings"_s);
        QVERIFY(!screen.button(u"Kings"_s));
        screen.button(u"Search"_s)->setFocus();
        screen.key(Qt::Key_Tab);
        QVERIFY(screen.button(title)->hasFocus());
        screen.press(title);
        QCOMPARE(screen.trail(), QStringList{title});
        screen.press(u"Settings"_s);
        QVERIFY(screen.model->isShowingSettings());
        screen.press(u"Find in entry (⌘F)"_s);
        QVERIFY(screen.model->isShowingFind());
        screen.press(u"Reload entry"_s);
        QVERIFY(screen.model->isStreaming());
        screen.press(u"Search"_s);
        QVERIFY(!screen.model->session());
    }

    void crumbsShareTheirRoom_data()
    {
        QTest::addColumn<QList<int>>("widths");
        QTest::addColumn<int>("available");
        QTest::addColumn<QList<int>>("shared");
        using Widths = QList<int>;
        QTest::newRow("none") << Widths() << 10 << Widths();
        QTest::newRow("enough") << Widths{40, 60} << 100 << Widths{40, 60};
        QTest::newRow("the longest gives way") << Widths{40, 90} << 100 << Widths{40, 60};
        QTest::newRow("all give way") << Widths{80, 90, 20} << 100 << Widths{40, 40, 20};
        QTest::newRow("no room") << Widths{80, 90} << -5 << Widths{0, 0};
    }
    void crumbsShareTheirRoom()
    {
        QFETCH(QList<int>, widths);
        QFETCH(int, available);
        QTEST(sharedWidths(widths, available), "shared");
    }

    void longCrumbsStayInTheBar()
    {
        Screen screen;
        screen.model->search(u"an endless question "_s.repeated(30));
        screen.claude.tocs.back().sink.finish(QStringList{u"A section"_s});
        screen.answer(u"Text."_s);
        screen.model->navigateTo(u"Ein "_s + QString(200, u'x'));
        QCoreApplication::processEvents();
        const auto& trail = screen.part<BreadcrumbTrail>();
        for (const QWidget* crumb : trail.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            QVERIFY(trail.rect().contains(crumb->geometry()) || crumb->isHidden());
        QVERIFY(screen.button(u"Settings"_s)->geometry().right() < 700);
    }

    void onlySoMuchIsShown()
    {
        Screen screen;
        QStringList sections(2000, u"S"_s);
        sections[0] = QString(5000, u's');
        screen.writeArticle(article, sections);
        const QList<TOCEntry*> entries = screen.view.findChildren<TOCEntry*>();
        QCOMPARE(entries.size(), contentsLimit.entries);
        QVERIFY(screen.showsText(u"… and 1900 more"_s));
        QHelpEvent toolTip(QEvent::ToolTip, {}, {});
        QApplication::sendEvent(entries.at(0), &toolTip);
        QCOMPARE(QToolTip::text(), plainToolTip(sections.at(0)));
        QTest::mouseClick(entries.at(0), Qt::LeftButton);
        QCOMPARE(screen.model->currentPage()->title, sections.at(0));

        const QString topic(5000, u't');
        screen.answer(u"Text.\nSEE_ALSO_JSON: [\"%1\"%2]"_s.arg(topic, u", \"T\""_s.repeated(99)));
        const auto links = screen.part<RelatedTopics>().findChildren<PlainButton*>();
        QCOMPARE(links.size(), topicsLimit.entries);
        QVERIFY(screen.showsText(u"… and 60 more"_s));
        links.at(0)->click();
        QCOMPARE(screen.model->session()->rootQuery, topic);
        screen.answer({}, Failure{u"It broke.\n"_s.repeated(1000)});
        QVERIFY(screen.part<ErrorPanel>().findChild<ThemedText*>()->isElided());
    }

    void waysOnAfterAFailure()
    {
        Screen screen;
        fail(screen);
        QVERIFY(screen.showsText(u"It broke."_s));
        for (const QString& name : {u"Try again"_s, u"New search"_s})
            QCOMPARE(screen.button(name)->focusPolicy(), Qt::NoFocus);
        QTRY_VERIFY(screen.part<ErrorPanel>().height() > 60);
        const QRect panel = screen.place(screen.part<ErrorPanel>());
        QVERIFY(panel.width() <= 360);
        QCOMPARE(panel.center().x(), screen.place(screen.part<EntryHeader>()).center().x());

        const std::size_t requests = screen.claude.entries.size();
        screen.press(u"Try again"_s);
        QCOMPARE(screen.claude.entries.size(), requests + 1);
        QVERIFY(!screen.part<ErrorPanel>().isVisible());
        screen.answer(u"x"_s, Failure{u"It broke again."_s});
        screen.press(u"New search"_s);
        QVERIFY(!screen.model->session());
    }

    void offersOfTheColumn()
    {
        Screen screen;
        finishDefinition(screen);
        QCOMPARE(screen.button(u"Full Entry"_s)->focusPolicy(), Qt::NoFocus);
        screen.press(u"Full Entry"_s);
        QCOMPARE(screen.model->currentPage()->entryType, EntryType::full);
        screen.answer(u"Text."_s + relatedTopicsLine);
        screen.press(u"Latin"_s);
        QCOMPARE(screen.model->session()->rootQuery, u"Latin"_s);
    }

    /// Its trail ends on a section, but the text on show is the root page's.
    void reopenedSession()
    {
        Screen screen;
        openSection(screen);
        screen.model->newSearch();
        screen.model->search(article);
        QCOMPARE(screen.model->currentPage()->title, u"Republic"_s);

        QVERIFY(screen.showsText(QString(title).toUpper()));
        QVERIFY(screen.showsText(title)); // the crumb
        QVERIFY(!screen.button(title));
        QCOMPARE(screen.shownLength(), u"Overview."_s.size());
        for (const TOCEntry* entry : screen.view.findChildren<TOCEntry*>())
            QVERIFY(!entry->isActive() || entry->isHidden());
        screen.find(u"overview"_s);
        QVERIFY(screen.showsText(u"1 of 1"_s));
        screen.press(u"Reload entry"_s);
        QVERIFY(screen.showsText(u"REPUBLIC"_s));
    }
};

VARNO_TEST(QApplication, EntryViewTest)
#include "EntryViewTest.moc"
