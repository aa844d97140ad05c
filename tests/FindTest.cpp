#include "reader/text/FindMatches.h"
#include "tests/EntryScreen.h"
#include "tests/TestMain.h"

#include <QRandomGenerator>
#include <QShortcut>
#include <QSignalSpy>

using namespace varno;
using namespace Qt::StringLiterals;

class FindTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void matches_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("needle");
        QTest::addColumn<QList<int>>("blocks");
        using Blocks = QList<int>;

        QTest::newRow("nothing to find") << u"Banana"_s << u""_s << Blocks();
        QTest::newRow("nothing to read") << u""_s << u"a"_s << Blocks();
        QTest::newRow("several in a block") << u"Banana\n\nApple"_s << u"a"_s << Blocks{0, 0, 0, 1};
        QTest::newRow("no overlap") << u"aaaa"_s << u"aa"_s << Blocks{0, 0};
        QTest::newRow("case") << u"ÄRA\n\närA"_s << u"äRa"_s << Blocks{0, 1};
        QTest::newRow("accents count") << u"résumé"_s << u"resume"_s << Blocks();
        QTest::newRow("literal") << u"a.c abc"_s << u"a.c"_s << Blocks{0};
        QTest::newRow("across a mark") << u"**bold** text"_s << u"** t"_s << Blocks{0};
        QTest::newRow("heading with its body")
            << u"## Title\nBody\n\nBody"_s << u"body"_s << Blocks{0, 1};
        QTest::newRow("empty blocks do not count")
            << u"\n\n \n\n\t\n\n\nword\n\n\n\nword"_s << u"word"_s << Blocks{0, 1};
        QTest::newRow("three newlines") << u"a\n\n\nb"_s << u"b"_s << Blocks{1};
        QTest::newRow("a line of spaces does not part") << u"a\n \nb"_s << u"b"_s << Blocks{0};
        QTest::newRow("blocks are trimmed") << u"  a  \n\n b "_s << u" "_s << Blocks();
        QTest::newRow("not across blocks") << u"ab\n\ncd"_s << u"b\n\nc"_s << Blocks();
        QTest::newRow("surrogates") << u"𝔸🦊 🦊"_s << u"🦊"_s << Blocks{0, 0};
    }
    void matches()
    {
        QFETCH(QString, text);
        QFETCH(QString, needle);
        QTEST(FindMatches(text, needle).findMatchBlocks(), "blocks");
    }

    void growingPageCountsAsTheWhole_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("needle");
        QTest::newRow("separators") << u"a\n\n\n\na\n\n\na \n\n \n\na"_s << u"a"_s;
        QTest::newRow("repeats") << u"aaaaa\n\naaa"_s << u"aa"_s;
        QTest::newRow("markup") << u"# A\nb\n\n- b\n- **bb**\n\nb"_s << u"b"_s;
        QTest::newRow("beyond the plane") << u"🦊\n\nx🦊🦊\n\n"_s << u"🦊"_s;
    }
    void growingPageCountsAsTheWhole()
    {
        QFETCH(QString, text);
        QFETCH(QString, needle);
        for (qsizetype first = 0; first <= text.size(); ++first) {
            for (qsizetype second = first; second <= text.size(); ++second) {
                FindMatches matches(QStringView(text).first(first), needle);
                matches.append(QStringView(text).sliced(first, second - first));
                QCOMPARE(matches.findMatchBlocks(),
                         FindMatches(text.first(second), needle).findMatchBlocks());
                matches.append(QStringView(text).sliced(second));
                QCOMPARE(matches.findMatchBlocks(), FindMatches(text, needle).findMatchBlocks());
            }
        }
    }

    void growingByOneCountsAsTheWhole()
    {
        QRandomGenerator random(1);
        QString text;
        FindMatches matches({}, u"ab"_s);
        for (int i = 0; i < 3000; ++i) {
            const QChar next = u"aAbB\n\n "[random.bounded(7)];
            text += next;
            matches.append(QStringView(&next, 1));
        }
        QCOMPARE(matches.findMatchBlocks(), FindMatches(text, u"ab"_s).findMatchBlocks());
        QVERIFY(matches.findMatchBlocks().size() > 100);
    }

    void findCountsAndSteps()
    {
        Screen screen;
        screen.write(u"rome"_s, u"Banana\n\nApple"_s);
        screen.find(u"a"_s);
        QVERIFY(screen.showsText(u"1 of 4"_s));
        screen.press(u"Previous match (⇧↩)"_s);
        QVERIFY(screen.showsText(u"4 of 4"_s));
        screen.key(Qt::Key_Return);
        QVERIFY(screen.showsText(u"1 of 4"_s));
        screen.press(u"Next match (↩)"_s);
        QVERIFY(screen.showsText(u"2 of 4"_s));
        QTest::keyClicks(QApplication::focusWidget(), u"p"_s);
        QVERIFY(screen.showsText(u"1 of 1"_s));
        QTest::keyClicks(QApplication::focusWidget(), u"x"_s);
        QVERIFY(screen.showsText(u"No results"_s));
        screen.key(Qt::Key_Return);
        screen.press(u"Previous match (⇧↩)"_s);
        QVERIFY(screen.showsText(u"No results"_s));
        screen.part<QLineEdit>().clear();
        QVERIFY(!screen.showsText(u"No results"_s));
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
        screen.press(u"Previous match (⇧↩)"_s);
        screen.answer(u"\nSEE_ALSO_JSON: [\"aaa\"]"_s);
        QVERIFY(screen.showsText(u"4 of 4"_s));
        screen.model->navigateTo(u"Kings"_s);
        screen.answer(u"Tarquinius"_s);
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

    void findOpensByKey_data()
    {
        QTest::addColumn<Qt::KeyboardModifier>("modifier");
        QTest::newRow("Control") << Qt::ControlModifier;
        QTest::newRow("Command") << Qt::MetaModifier;
    }
    void findOpensByKey()
    {
        QFETCH(Qt::KeyboardModifier, modifier);
        Screen screen;
        screen.writeArticle(article, {u"Kings"_s});
        screen.key(Qt::Key_F, modifier);
        QVERIFY(screen.model->isShowingFind());
        QTest::keyClicks(QApplication::focusWidget(), u"over"_s);
        QCOMPARE(screen.part<QLineEdit>().text(), u"over"_s);
        screen.view.setFocus();
        screen.key(Qt::Key_F, modifier);
        screen.key(Qt::Key_F, modifier); // from within the field
        QCOMPARE(screen.part<QLineEdit>().selectedText(), u"over"_s);
        QVERIFY(screen.part<QLineEdit>().hasFocus());
    }

    void escapeClosesFindFirst_data()
    {
        QTest::addColumn<bool>("fromTheField");
        QTest::newRow("from the field") << true;
        QTest::newRow("from the text") << false;
    }
    void escapeClosesFindFirst()
    {
        QFETCH(bool, fromTheField);
        Screen screen;
        screen.writeArticle(article, {u"Kings"_s});
        screen.find(u"over"_s);
        if (!fromTheField)
            screen.view.setFocus();
        screen.key(Qt::Key_Escape, Qt::ShiftModifier);
        QVERIFY(screen.model->isShowingFind());

        const QShortcut ofTheWindow(Qt::Key_Escape, &screen.window);
        const QSignalSpy closed(&ofTheWindow, &QShortcut::activated);
        screen.key(Qt::Key_Escape);
        QVERIFY(!screen.model->isShowingFind());
        QVERIFY(!screen.part<FindBar>().isVisible());
        QVERIFY(screen.part<QLineEdit>().text().isEmpty());
        QVERIFY(screen.part<MarkdownContentView>().isAncestorOf(QApplication::focusWidget()));
        QCOMPARE(closed.size(), 0);
        screen.key(Qt::Key_Escape);
        QCOMPARE(closed.size(), 1);
    }

    void closedFindStartsAnew()
    {
        Screen screen;
        screen.write(u"rome"_s, u"aaa"_s);
        screen.find(u"a"_s);
        screen.key(Qt::Key_Return);
        screen.window.hide();
        screen.model->setShowingFind(false);
        screen.model->setShowingFind(true);
        screen.window.show();
        QVERIFY(screen.part<QLineEdit>().text().isEmpty());
        screen.part<QLineEdit>().setText(u"a"_s);
        QVERIFY(screen.showsText(u"1 of 3"_s));
    }
};

VARNO_TEST(QApplication, FindTest)
#include "FindTest.moc"
