#include "reader/text/FindMatches.h"
#include "tests/EntryScreen.h"
#include "tests/Test.h"

#include <QShortcut>
#include <QSignalSpy>

class FindTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void matches()
    {
        for (const auto& [text, needle, blocks] : Rows<QString, QString, QList<int>>{
                 {u"Banana"_s, u""_s, {}},
                 {u"Banana\n\nApple"_s, u"a"_s, {0, 0, 0, 1}},
                 {u"aaaaa\n\naaa"_s, u"aa"_s, {0, 0, 1}},
                 {u"ÄRA\n\närA ara"_s, u"äRa"_s, {0, 1}},
                 {u"**bold.** text"_s, u".** t"_s, {0}},
                 {u"## Title\nBody\n\n- b\n- **bb**\n\nBody"_s, u"b"_s, {0, 1, 1, 1, 2}},
                 {u"\n\n \n\n\t\n\n\na\n\n\n\na\n\n\na \n\n \n\na"_s, u"a"_s, {0, 1, 2, 3}},
                 {u"  a  \n\n b "_s, u" "_s, {}},
                 {u"ab\n\ncd"_s, u"b\n\nc"_s, {}},
                 {u"𝔸🦊 🦊\n\nx🦊🦊\n\n"_s, u"🦊"_s, {0, 0, 1, 1}}}) {
            const InRow row(text, needle);
            QCOMPARE(FindMatches(text, needle).findMatchBlocks(), blocks);
            // A page that grows holds what the whole of it holds.
            for (qsizetype first = 0; first <= text.size(); ++first) {
                for (qsizetype second = first; second <= text.size(); ++second) {
                    FindMatches growing(QStringView(text).first(first), needle);
                    growing.append(QStringView(text).sliced(first, second - first));
                    QCOMPARE(growing.findMatchBlocks(),
                             FindMatches(text.first(second), needle).findMatchBlocks());
                    growing.append(QStringView(text).sliced(second));
                    QCOMPARE(growing.findMatchBlocks(), blocks);
                }
            }
        }
    }

    void findCountsAndSteps()
    {
        Screen screen;
        screen.write(u"rome"_s, u"Banana\n\nApple"_s);
        screen.find(u"a"_s);
        QVERIFY(screen.showsText(u"1 of 4"_s));
        screen.press(u"Previous match (Shift+Return)"_s);
        QVERIFY(screen.showsText(u"4 of 4"_s));
        screen.key(Qt::Key_Return);
        QVERIFY(screen.showsText(u"1 of 4"_s));
        screen.press(u"Next match (Return)"_s);
        QVERIFY(screen.showsText(u"2 of 4"_s));
        QTest::keyClicks(QApplication::focusWidget(), u"p"_s);
        QVERIFY(screen.showsText(u"1 of 1"_s));
        QTest::keyClicks(QApplication::focusWidget(), u"x"_s);
        QVERIFY(screen.showsText(u"No results"_s));
        screen.press(u"Previous match (Shift+Return)"_s);
        screen.part<QLineEdit>().clear();
        QVERIFY(!screen.showsText(u"No results"_s));

        // One that was closed starts anew, even unseen.
        screen.part<QLineEdit>().setText(u"a"_s);
        screen.key(Qt::Key_Return);
        screen.window.hide();
        screen.model->setShowingFind(false);
        screen.model->setShowingFind(true);
        screen.window.show();
        QVERIFY(screen.part<QLineEdit>().text().isEmpty());
        screen.part<QLineEdit>().setText(u"a"_s);
        QVERIFY(screen.showsText(u"1 of 4"_s));
    }

    void findFollowsThePage()
    {
        Screen screen;
        screen.model->search(article);
        screen.find(u"a"_s);
        QVERIFY(screen.showsText(u"No results"_s));
        screen.send(u"Banana"_s);
        QTRY_VERIFY(screen.showsText(u"1 of 3"_s));
        screen.send(u"\n\nApple"_s);
        QTRY_VERIFY(screen.showsText(u"1 of 4"_s));
        screen.press(u"Previous match (Shift+Return)"_s);
        screen.answer(u"\nSEE_ALSO_JSON: [\"aaa\"]"_s);
        QVERIFY(screen.showsText(u"4 of 4"_s));
        screen.openSection(u"Kings"_s, u"Tarquinius"_s);
        QVERIFY(screen.showsText(u"1 of 1"_s));
    }

    void findScrollsToTheMiddle()
    {
        Screen screen;
        screen.write(article, longText());
        screen.find(u"paragraph 30"_s);
        const auto isCentred = [&] {
            const QRect block = screen.part<MarkdownContentView>().blockRect(30);
            const int middle = screen.part<MarkdownContentView>().y() + block.center().y();
            const int view = screen.part<ReadingColumn>().viewport()->height();
            return qAbs(middle - screen.scrollBar().value() - view / 2) <= 1;
        };
        QTRY_VERIFY(isCentred());
        screen.part<QLineEdit>().setText(u"paragraph 0 "_s);
        QTRY_COMPARE(screen.scrollBar().value(), 0);
        screen.part<QLineEdit>().setText(u"paragraph 59"_s);
        QTRY_COMPARE(screen.scrollBar().value(), screen.scrollBar().maximum());
    }

    void keysOpenAndCloseFind()
    {
        for (const Qt::KeyboardModifier modifier : {Qt::ControlModifier, Qt::MetaModifier}) {
            const InRow row(modifier);
            Screen screen;
            screen.write(u"rome"_s);
            screen.key(Qt::Key_F, modifier);
            QVERIFY(screen.model->isShowingFind());
            QTest::keyClicks(QApplication::focusWidget(), u"over"_s);
            screen.view.setFocus();
            screen.key(Qt::Key_F, modifier);
            screen.key(Qt::Key_F, modifier); // from within the field
            QCOMPARE(screen.part<QLineEdit>().selectedText(), u"over"_s);
            QVERIFY(screen.part<QLineEdit>().hasFocus());

            // Escape closes it first, from its field or from the text.
            if (modifier == Qt::MetaModifier)
                screen.view.setFocus();
            screen.key(Qt::Key_Escape, Qt::ShiftModifier);
            QVERIFY(screen.model->isShowingFind());
            const QShortcut ofTheWindow(Qt::Key_Escape, &screen.window);
            const QSignalSpy closed(&ofTheWindow, &QShortcut::activated);
            screen.key(Qt::Key_Escape);
            QVERIFY(!screen.model->isShowingFind());
            QVERIFY(!screen.part<FindBar>().isVisible());
            QVERIFY(screen.part<MarkdownContentView>().isAncestorOf(QApplication::focusWidget()));
            QCOMPARE(closed.size(), 0);
            screen.key(Qt::Key_Escape);
            QCOMPARE(closed.size(), 1);
        }
    }
};

VARNO_TEST(QApplication, FindTest)
#include "FindTest.moc"
