#include "tests/EntryScreen.h"

#include <QElapsedTimer>

using namespace varno;
using namespace Qt::StringLiterals;

using Change = std::function<void(Screen&)>;

class ReadingColumnTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void piecesOfAFrameAreShownTogether()
    {
        Screen screen;
        screen.model->search(article);
        QTRY_COMPARE(screen.shownLength(), 0);
        QElapsedTimer sinceStart;
        sinceStart.start();
        int pieces = 0;
        int flushes = 0;
        qsizetype shown = 0;
        connect(screen.model.get(), &AppViewModel::changed, &screen.view, [&] {
            ++pieces;
            flushes += std::exchange(shown, screen.shownLength()) != shown;
        });
        for (int i = 0; i < 300; ++i) {
            screen.claude.entries.back().sink.send(u"word "_s);
            QCoreApplication::processEvents();
        }
        QTRY_COMPARE(pieces, 300);
        QVERIFY(flushes <= 2 + sinceStart.elapsed() / 16);
        QTRY_COMPARE(screen.shownLength(), 1500);
    }

    void hiddenScreenCatchesUp()
    {
        Screen screen;
        screen.model->search(u"rome"_s);
        screen.send(u"One"_s);
        QTRY_COMPARE(screen.shownLength(), 3);
        screen.window.hide();
        screen.send(u", two"_s);
        QTest::qWait(50); // longer than a frame
        QCOMPARE(screen.shownLength(), 3);
        screen.window.show();
        QCOMPARE(screen.shownLength(), 8);
        screen.window.hide();
        screen.model->search(u"carthage"_s);
        screen.send(u"Other"_s);
        QVERIFY(!screen.showsText(u"CARTHAGE"_s));
        screen.window.show();
        QVERIFY(screen.showsText(u"CARTHAGE"_s));
        QCOMPARE(screen.shownLength(), 5);
    }

    void positionStaysWhileTextArrives()
    {
        Screen screen;
        screen.model->search(article);
        screen.send(u"\n"_s + longText());
        QTRY_VERIFY(screen.scrollBar().maximum() > 1000);
        screen.scrollBar().setValue(700);
        for (int i = 0; i < 20; ++i) {
            screen.send(u"More, "_s + longText().left(500));
            QTest::qWait(5);
            QCOMPARE(screen.scrollBar().value(), 700);
        }
        screen.answer(u"The end."_s + relatedTopicsLine);
        QTest::qWait(20);
        QCOMPARE(screen.scrollBar().value(), 700);
    }

    void lineAtTheTopStays_data()
    {
        QTest::addColumn<Change>("change");
        QTest::newRow("smaller text")
            << Change([](Screen& screen) { screen.model->setFontSize(FontSize::small); });
        QTest::newRow("larger text")
            << Change([](Screen& screen) { screen.model->setFontSize(FontSize::large); });
        QTest::newRow("theme") << Change(
            [](Screen& screen) { setTheme(screen.window, AppTheme::dark); });
        QTest::newRow("narrower") << Change([](Screen& screen) { screen.window.resize(500, 500); });
        QTest::newRow("wider") << Change([](Screen& screen) { screen.window.resize(1000, 500); });
    }
    void lineAtTheTopStays()
    {
        QFETCH(Change, change);
        Screen screen;
        screen.write(article, longText());
        QTRY_VERIFY(screen.part<MarkdownContentView>().blockRect(59).isValid());
        QTRY_VERIFY(screen.scrollBar().maximum() > 2000);
        screen.scrollBar().setValue(1500);
        const int block = screen.topBlock();
        QVERIFY(block > 5);
        change(screen);
        QTest::qWait(50);
        QCOMPARE(screen.topBlock(), block);
    }

    void anotherPageStartsAtItsTop()
    {
        Screen screen;
        screen.model->search(article);
        screen.claude.tocs.back().sink.finish(QStringList{u"Kings"_s});
        screen.answer(longText());
        screen.model->navigateTo(u"Kings"_s);
        screen.answer(longText());
        QTRY_VERIFY(screen.scrollBar().maximum() > 1000);
        screen.scrollBar().setValue(700);
        screen.model->goBack();
        QCOMPARE(screen.scrollBar().value(), 0);
        screen.scrollBar().setValue(700);
        screen.model->reloadCurrentPage();
        QCOMPARE(screen.scrollBar().value(), 0);
    }

    void keysScroll_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<int>("direction");
        QTest::newRow("Page Down") << Qt::Key_PageDown << 1;
        QTest::newRow("Page Up") << Qt::Key_PageUp << -1;
        QTest::newRow("Space") << Qt::Key_Space << 1;
        QTest::newRow("Down") << Qt::Key_Down << 1;
        QTest::newRow("Up") << Qt::Key_Up << -1;
        QTest::newRow("Home") << Qt::Key_Home << -1;
        QTest::newRow("End") << Qt::Key_End << 1;
    }
    void keysScroll()
    {
        QFETCH(Qt::Key, key);
        Screen screen;
        screen.write(u"rome"_s, longText());
        QTRY_VERIFY(screen.scrollBar().maximum() > 2000);
        screen.scrollBar().setValue(1000);
        screen.key(key);
        const int moved = screen.scrollBar().value() - 1000;
        QTEST(moved > 0 ? 1 : moved < 0 ? -1 : 0, "direction");
        QVERIFY(screen.window.keys.isEmpty());
    }

    void selectionDraggedBeyondTheEdgeScrolls()
    {
        Screen screen;
        screen.write(u"rome"_s, longText());
        QTRY_VERIFY(screen.scrollBar().maximum() > 2000);
        const auto& text = screen.part<MarkdownContentView>();
        QWidget* surface = text.childAt(0, 0);
        const QPoint below = surface->mapFrom(&screen.window, QPoint(400, 520));
        QTest::mousePress(surface, Qt::LeftButton, {}, {10, 10});
        QMouseEvent move(QEvent::MouseMove, below, surface->mapToGlobal(below), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(surface, &move);
        const qsizetype selected = text.selectedText().size();
        QTRY_VERIFY(screen.scrollBar().value() > 100);
        QVERIFY(text.selectedText().size() > selected);

        QTest::mouseRelease(surface, Qt::LeftButton, {}, below);
        const int value = screen.scrollBar().value();
        QTest::qWait(100);
        QCOMPARE(screen.scrollBar().value(), value);
    }
};

VARNO_TEST(QApplication, ReadingColumnTest)
#include "ReadingColumnTest.moc"
