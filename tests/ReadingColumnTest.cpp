#include "tests/EntryScreen.h"
#include "tests/Test.h"

#include <QElapsedTimer>
#include <QKeyEvent>

namespace {

/// The screen with a finished page of many lines, scrolled to `position`.
struct LongPage : Screen {
    explicit LongPage(int position)
    {
        write(u"rome"_s, longText());
        QTRY_VERIFY(part<MarkdownContentView>().blockRect(59).isValid());
        QTRY_VERIFY(scrollBar().maximum() > 2000);
        scrollBar().setValue(position);
    }
    /// The block of text at the upper edge.
    [[nodiscard]] int topBlock() const
    {
        const auto& text = part<MarkdownContentView>();
        return text.blockAt(scrollBar().value() - text.y());
    }
};

} // namespace

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

    void lineAtTheTopStays()
    {
        LongPage page(1500);
        const int block = page.topBlock();
        QVERIFY(block > 5);
        for (const auto& [name, change] : Rows<const char*, std::function<void()>>{
                 {"larger text", [&] { page.model->setFontSize(FontSize::large); }},
                 {"another theme", [&] { setTheme(page.window, AppTheme::dark); }},
                 {"narrower", [&] { page.window.resize(500, 500); }}}) {
            const InRow row(name);
            change();
            QTest::qWait(50);
            QCOMPARE(page.topBlock(), block);
        }
        QCOMPARE(page.part<QTextBrowser>().palette().color(QPalette::Text),
                 themeColor(page.window.palette(), ColorRole::text));
    }

    void eachPageIsWhereItWasLeft()
    {
        LongPage page(700);
        const auto at = [&page](int value) {
            QTRY_VERIFY(page.scrollBar().maximum() > 1000);
            QCOMPARE(page.scrollBar().value(), value);
        };
        page.openSection(u"Kings"_s, longText());
        at(0);
        page.scrollBar().setValue(800);
        page.model->goBack();
        at(700);
        page.openSection(u"Kings"_s);
        at(800);
        page.model->reloadCurrentPage();
        page.window.hide();
        page.answer(longText()); // there again before it is seen
        page.window.show();
        at(0);
    }

    void keysScroll()
    {
        LongPage page(1000);
        const int height = page.scrollBar().pageStep();
        for (const auto& [key, value] :
             Rows<Qt::Key, int>{{Qt::Key_PageDown, 1000 + height},
                                {Qt::Key_PageUp, 1000 - height},
                                {Qt::Key_Space, 1000 + height},
                                {Qt::Key_Down, 1024},
                                {Qt::Key_Up, 976},
                                {Qt::Key_Home, 0},
                                {Qt::Key_End, page.scrollBar().maximum()}}) {
            const InRow row(key);
            page.scrollBar().setValue(1000);
            page.key(key);
            QCOMPARE(page.scrollBar().value(), value);
        }
        page.scrollBar().setValue(1000);
        page.key(Qt::Key_Space, Qt::ShiftModifier);
        QCOMPARE(page.scrollBar().value(), 1000 - height);
        QKeyEvent unwanted(QEvent::KeyPress, Qt::Key_Down, Qt::AltModifier);
        QCoreApplication::sendEvent(QApplication::focusWidget(), &unwanted);
        QVERIFY(!unwanted.isAccepted());
        QCOMPARE(page.scrollBar().value(), 1000 - height);
    }

    void selectionDraggedBeyondTheEdgeScrolls()
    {
        LongPage page(0);
        const auto& text = page.part<MarkdownContentView>();
        QWidget* surface = text.childAt(0, 0);
        QTest::mousePress(surface, Qt::LeftButton, {}, {10, 10});
        page.drag(*surface, {400, 520});
        const qsizetype selected = text.selectedText().size();
        QTRY_VERIFY(page.scrollBar().value() > 100);
        QVERIFY(text.selectedText().size() > selected);

        QTest::mouseRelease(surface, Qt::LeftButton);
        const int value = page.scrollBar().value();
        QTest::qWait(100);
        QCOMPARE(page.scrollBar().value(), value);
    }
};

VARNO_TEST(QApplication, ReadingColumnTest)
#include "ReadingColumnTest.moc"
