#include "reader/BreadcrumbTrail.h"
#include "reader/TOCEntry.h"
#include "tests/EntryScreen.h"
#include "tests/Test.h"

namespace {

void finishArticle(Screen& screen)
{
    screen.writeArticle(article, {u"Kings"_s, u"Republic"_s, u"Caesars"_s});
}

void openRepublic(Screen& screen)
{
    finishArticle(screen);
    screen.openSection(u"Republic"_s, u"Consuls."_s + relatedTopicsLine);
}

void fail(Screen& screen)
{
    screen.model->search(u"carthage"_s);
    screen.answer(u"Text."_s + relatedTopicsLine, Failure{u"It broke."_s});
}

/// What of the screen can be seen.
QString onShow(const Screen& screen)
{
    QStringList parts;
    const std::initializer_list<std::pair<QString, const QWidget*>> all = {
        {u"text"_s, &screen.part<MarkdownContentView>()},
        {u"cursor"_s, &screen.part<BlinkingCursor>()},
        {u"status"_s, &screen.part<PulsingStatusText>()},
        {u"offer"_s, &screen.part<FullEntryButton>()},
        {u"topics"_s, &screen.part<RelatedTopics>()},
        {u"error"_s, &screen.part<ErrorPanel>()},
        {u"sidebar"_s, &screen.part<TOCSidebarView>()},
        {u"divider"_s, &screen.part<ResizeDivider>()},
        {u"placeholders"_s, &screen.part<LoadingPlaceholders>()}};
    for (const auto& [name, widget] : all)
        parts += widget->isVisible() ? QStringList(name) : QStringList();
    return parts.join(u' ');
}

} // namespace

class EntryViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void placesOfTheParts()
    {
        Screen screen;
        finishArticle(screen);
        screen.model->setShowingFind(true);
        QTRY_COMPARE(screen.place<FindBar>().width(), 700); // laid out

        const QRect find = screen.place<FindBar>();
        const QRect column = screen.place<ReadingColumn>();
        QCOMPARE(find.top(), screen.place<BreadcrumbBar>().bottom() + 1);
        QCOMPARE(screen.place<TOCSidebarView>(), QRect(0, find.bottom() + 1, 200, column.height()));
        QCOMPARE(screen.place<ResizeDivider>().left(), 200);
        QCOMPARE(column.topLeft(), screen.place<ResizeDivider>().topRight() + QPoint(1, 0));
        QCOMPARE(column.bottomRight(), QPoint(699, 499));
        const QRect header = screen.place<EntryHeader>();
        QCOMPARE(header.topLeft() - column.topLeft(), QPoint(36, 28));
        QCOMPARE(screen.place<MarkdownContentView>().top(), header.bottom() + 1 + 20);
    }

    void whatTheScreenShows()
    {
        Screen screen;
        QCOMPARE(onShow(screen), u"text"_s);
        screen.model->search(article);
        QCOMPARE(onShow(screen), u"text cursor status sidebar divider placeholders"_s);
        screen.claude.tocs.back().sink.finish(Failure{u"No contents."_s});
        QTRY_COMPARE(onShow(screen), u"text cursor status sidebar divider"_s);
        screen.answer(u"Text."_s);
        QCOMPARE(onShow(screen), u"text"_s);

        screen.model->search(u"rome"_s);
        screen.send(u"Te"_s);
        QTRY_COMPARE(onShow(screen), u"text cursor"_s);
        screen.answer(u"xt."_s + relatedTopicsLine);
        QCOMPARE(onShow(screen), u"text offer topics"_s);
        screen.model->reloadCurrentPage();
        QCOMPARE(onShow(screen), u"text cursor status"_s);
        screen.answer(u"![](x)\n\n**"_s);
        QCOMPARE(onShow(screen), u"text offer"_s);
        screen.model->reloadCurrentPage();
        screen.answer(u"![](x)"_s); // nothing to read
        QCOMPARE(onShow(screen), u"text offer error"_s);
        fail(screen);
        QCOMPARE(onShow(screen), u"error"_s);

        screen.writeArticle(u"why is the sea so salty"_s, {u"Rivers"_s});
        QCOMPARE(onShow(screen), u"text sidebar divider"_s);
        screen.openSection(u"Rivers"_s, u"Salt."_s + relatedTopicsLine);
        QCOMPARE(onShow(screen), u"text topics sidebar divider"_s);
        screen.model->newSearch();
        QCOMPARE(onShow(screen), u"text"_s);
    }

    void divider()
    {
        Screen screen;
        finishArticle(screen);
        auto& divider = screen.part<ResizeDivider>();
        // Where the pointer is led in turn, and how wide the sidebar is then: from 140 to 340, and
        // measured from where the drag began.
        for (const auto& [places, width] :
             Rows<QList<int>, int>{{{500, 40}, 240}, {{200}, 340}, {{-300}, 140}}) {
            const InRow row(places);
            QTRY_COMPARE(divider.x(), screen.part<TOCSidebarView>().width());
            const int start = divider.mapTo(&screen.window, QPoint(2, 9)).x();
            QTest::mousePress(&divider, Qt::LeftButton, {}, {2, 9});
            for (const int place : places) {
                screen.drag(divider, {start + place, 100});
                QCoreApplication::processEvents(); // the divider moves along
            }
            QTest::mouseRelease(&divider, Qt::LeftButton);
            QCOMPARE(screen.part<TOCSidebarView>().width(), width);
        }
    }

    void contents()
    {
        Screen screen;
        openRepublic(screen);
        const QList<TOCEntry*> entries = screen.view.findChildren<TOCEntry*>();
        const auto active = [&] {
            QStringList names;
            for (const TOCEntry* entry : entries)
                names += entry->isActive() ? entry->section() : QString();
            return names;
        };
        QCOMPARE(active(), QStringList({{}, u"Republic"_s, {}}));
        QTest::mouseClick(entries.at(2), Qt::LeftButton);
        QCOMPARE(screen.model->currentPage()->title, u"Caesars"_s);
        QCOMPARE(active(), QStringList({{}, {}, u"Caesars"_s}));
        const auto ground = [&](int index) {
            return entries.at(index)->grab().toImage().pixelColor(10, 10);
        };
        QVERIFY(ground(2) != ground(0)); // marked
        QVERIFY(ground(0) == ground(1));

        // By keyboard: one stop for Tab, and arrows between.
        entries.at(1)->setFocus();
        for (const auto& [key, focused] : Rows<Qt::Key, int>{{Qt::Key_Up, 0},
                                                             {Qt::Key_Up, 0},
                                                             {Qt::Key_Down, 1},
                                                             {Qt::Key_Down, 2},
                                                             {Qt::Key_Down, 2}}) {
            screen.key(key);
            QVERIFY(entries.at(focused)->hasFocus());
        }
        screen.key(Qt::Key_Tab);
        QVERIFY(!entries.contains(QApplication::focusWidget()));
        screen.key(Qt::Key_Backtab);
        QVERIFY(entries.at(2)->hasFocus());
        screen.key(Qt::Key_Up);
        screen.key(Qt::Key_Return);
        QCOMPARE(screen.model->currentPage()->title, u"Republic"_s);
    }

    void tabGoesThroughThePageAsItIsRead()
    {
        Screen screen;
        openRepublic(screen);
        QStringList expected = {u"Search"_s,       articleTitle,  u"Find in entry (Ctrl+F)"_s,
                                u"Reload entry"_s, u"Settings"_s, u"Kings"_s,
                                u"Entry"_s,        u"Carthage"_s, u"Latin"_s};
        const auto pass = [&](Qt::Key key) {
            QStringList names;
            for (qsizetype i = 0; i < expected.size(); ++i) {
                names.append(QApplication::focusWidget()->accessibleName());
                screen.key(key);
            }
            return names;
        };
        screen.button(u"Search"_s)->setFocus();
        QCOMPARE(pass(Qt::Key_Tab), expected);
        QVERIFY(screen.button(u"Search"_s)->hasFocus()); // all the way round
        std::reverse(expected.begin() + 1, expected.end());
        QCOMPARE(pass(Qt::Key_Backtab), expected);
    }

    void anotherPageHasNothingSelected()
    {
        Screen screen;
        openRepublic(screen);
        const auto& text = screen.part<MarkdownContentView>();
        const auto& surface = *text.findChild<QTextBrowser*>();
        QTest::mouseDClick(surface.viewport(), Qt::LeftButton, {}, {10, 10});
        QCOMPARE(text.selectedText(), u"Consuls"_s);
        screen.model->setFontSize(FontSize::large); // the same page
        QCOMPARE(text.selectedText(), u"Consuls"_s);
        const EntryView another(*screen.model);
        for (const QWidget* view : std::array<const QWidget*, 2>{&screen.view, &another})
            QCOMPARE(view->findChild<MarkdownContentView*>()->document().defaultFont().pixelSize(),
                     19);
        screen.model->goBack();
        QCOMPARE(screen.shownLength(), u"Overview."_s.size());
        QCOMPARE(text.selectedText(), QString());
    }

    void breadcrumbs()
    {
        Screen screen;
        finishArticle(screen);
        QVERIFY(!screen.button(articleTitle)); // here we are
        screen.model->navigateTo(u"Kings"_s);
        QVERIFY(!screen.button(u"Kings"_s));
        screen.press(articleTitle);
        QCOMPARE(screen.trail(), QStringList{articleTitle});
        screen.press(u"Settings"_s);
        QVERIFY(screen.model->isShowingSettings());
        screen.press(u"Find in entry (Ctrl+F)"_s);
        QVERIFY(screen.model->isShowingFind());
        screen.press(u"Reload entry"_s);
        QVERIFY(screen.model->isStreaming());
        screen.press(u"Search"_s);
        QVERIFY(!screen.model->session());
    }

    void crumbsShareTheirRoom()
    {
        Screen screen;
        screen.writeArticle(u"an endless question "_s.repeated(30), {});
        QTRY_VERIFY(screen.button(u"Settings"_s)->geometry().right() < 700);
    }

    void onlySoMuchIsShown()
    {
        Screen screen;
        screen.writeArticle(article, QString(2000, u'S').split(QString(), Qt::SkipEmptyParts));
        QCOMPARE(screen.view.findChildren<TOCEntry*>().size(), contentsLimit.entries);
        QVERIFY(screen.showsText(u"… and 1900 more"_s));

        const QString topic(5000, u't');
        screen.write(u"rome"_s,
                     u"Text.\nSEE_ALSO_JSON: [\"%1\"%2]"_s.arg(topic, u", \"T\""_s.repeated(99)));
        const auto links = screen.part<RelatedTopics>().findChildren<PlainButton*>();
        QCOMPARE(links.size(), topicsLimit.entries);
        QVERIFY(screen.showsText(u"… and 60 more"_s));
        QVERIFY(links.at(0)->width() <= screen.part<RelatedTopics>().width());
        links.at(0)->click();
        QCOMPARE(screen.model->session()->rootQuery, topic);
    }

    void waysOn()
    {
        Screen screen;
        fail(screen);
        QVERIFY(screen.showsText(u"It broke."_s));
        screen.press(u"Try again"_s);
        QCOMPARE(screen.claude.entries.size(), 2U);
        screen.answer(u"x"_s, Failure{u"It broke again."_s});
        screen.press(u"New search"_s);
        QVERIFY(!screen.model->session());

        screen.write(u"rome"_s);
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
        openRepublic(screen);
        screen.model->newSearch();
        screen.model->search(article);
        QCOMPARE(screen.model->currentPage()->title, u"Republic"_s);

        QVERIFY(screen.showsText(QString(articleTitle).toUpper()));
        QVERIFY(!screen.button(articleTitle));
        QCOMPARE(screen.shownLength(), u"Overview."_s.size());
        for (const TOCEntry* entry : screen.view.findChildren<TOCEntry*>())
            QVERIFY(!entry->isActive() || entry->isHidden());
        screen.press(u"Reload entry"_s);
        QVERIFY(screen.showsText(u"REPUBLIC"_s));
    }
};

VARNO_TEST(QApplication, EntryViewTest)
#include "EntryViewTest.moc"
