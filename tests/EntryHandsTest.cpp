#include "tests/EntryScreen.h"
#include "tests/Test.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTextBrowser>

namespace {

/// The screen with a definition.
struct Definition : Screen {
    explicit Definition(const QString& text = u"First words of it. See [there](https://a.b/)."_s,
                        const QString& query = u"straße"_s)
    {
        write(query, text + relatedTopicsLine);
    }

    [[nodiscard]] MarkdownContentView& text() const { return part<MarkdownContentView>(); }
    [[nodiscard]] QWidget& surface() const { return *part<QTextBrowser>().viewport(); }
    [[nodiscard]] SelectableText& title() const { return part<SelectableText>(); }
    [[nodiscard]] QString copied() const
    {
        key(Qt::Key_C, Qt::ControlModifier);
        return QApplication::clipboard()->text();
    }
    /// The press at one place of the window, and the way to another, go to whoever is there.
    void dragFrom(const QPoint& begin, const QPoint& end) const
    {
        QWidget& pressed = *view.childAt(begin);
        QTest::mousePress(&pressed, Qt::LeftButton, {}, pressed.mapFrom(&window, begin));
        drag(pressed, end);
        QTest::mouseRelease(&pressed, Qt::LeftButton, {}, pressed.mapFrom(&window, end));
    }
    /// Opens the menu there, and triggers what begins so, if anything is to be.
    QStringList menu(QWidget& widget, const QPoint& position, const QString& choice = {},
                     QContextMenuEvent::Reason reason = QContextMenuEvent::Mouse)
    {
        QContextMenuEvent event(reason, position, widget.mapToGlobal(position));
        QApplication::sendEvent(&widget, &event);
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        QStringList names;
        for (QAction* action : menu ? menu->actions() : QList<QAction*>()) {
            if (action->isSeparator())
                continue;
            names.append(action->text().section(u'\t', 0, 0));
            if (!choice.isEmpty() && names.last().startsWith(choice))
                action->trigger();
        }
        if (menu)
            menu->close();
        return names;
    }
};

} // namespace

class EntryHandsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pointerOverTextIsAnIBeam()
    {
        const Definition screen;
        QCOMPARE(screen.title().cursor().shape(), Qt::IBeamCursor);
        const QRect link = screen.text().blockRect(0);
        const auto shapeAt = [&](int x) {
            QTest::mouseMove(&screen.surface(), {x, link.center().y()});
            QCoreApplication::processEvents();
            return screen.surface().cursor().shape();
        };
        QCOMPARE(shapeAt(5), Qt::IBeamCursor);
        int x = 5;
        while (shapeAt(x) == Qt::IBeamCursor && x < screen.surface().width())
            x += 5;
        QCOMPARE(screen.surface().cursor().shape(), Qt::PointingHandCursor);
        QCOMPARE(shapeAt(5), Qt::IBeamCursor);
    }

    void titleIsCopiedAsItIsWritten()
    {
        const Definition screen(u"Text."_s, u"die Straße dort"_s);
        QCOMPARE(screen.title().text(), u"DIE STRASSE DORT"_s);
        const int middle = screen.title().height() / 4; // in the first line
        QTest::mouseDClick(&screen.title(), Qt::LeftButton, {}, {3, middle});
        QCOMPARE(screen.copied(), u"Die"_s);
        QTest::mousePress(&screen.title(), Qt::LeftButton, {}, {3, middle});
        QTest::mouseRelease(&screen.title(), Qt::LeftButton, {}, {3, middle});
        QCOMPARE(screen.copied(), u"Die Straße Dort"_s); // by the third press
        const QPoint top = screen.place<SelectableText>().topLeft();
        screen.dragFrom(top + QPoint(0, middle), top + QPoint(2000, middle));
        QCOMPARE(screen.copied(), u"Die Straße Dort"_s);
        QVERIFY(screen.part<QTextBrowser>().hasFocus()); // its keys read on
        screen.key(Qt::Key_A, Qt::ControlModifier);
        QVERIFY(!screen.title().hasSelection());
        QVERIFY(screen.text().hasSelection());
        QTest::mouseDClick(&screen.title(), Qt::LeftButton, {}, {3, middle});
        QVERIFY(!screen.text().hasSelection());
    }

    void dragBesideTheTextSelects()
    {
        Definition screen(u"One.\n\nTwo.\n\nThree."_s);
        const QRect text = screen.place<MarkdownContentView>();
        const auto leftOf = [&](int block) {
            return QPoint(text.left() - 20,
                          text.top() + screen.text().blockRect(block).center().y());
        };
        screen.dragFrom(leftOf(0), leftOf(2));
        QCOMPARE(screen.text().selectedText(), u"One.\n\nTwo.\n\n"_s);
        screen.dragFrom(leftOf(1), leftOf(1) + QPoint(text.width() + 30, 0));
        QCOMPARE(screen.text().selectedText(), u"Two."_s);
        const QRect title = screen.place<SelectableText>();
        screen.dragFrom(title.topLeft() + QPoint(-20, 9), title.bottomRight() + QPoint(20, 0));
        QCOMPARE(screen.copied(), u"Straße"_s);
        QWidget& margin = *screen.part<ReadingColumn>().widget();
        QMouseEvent press(QEvent::MouseButtonPress, {3, 3}, margin.mapToGlobal(QPoint(3, 3)),
                          Qt::LeftButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&margin, &press);
        QVERIFY(!press.isAccepted()); // it is for whoever moves the window
        QVERIFY(screen.title().hasSelection());
    }

    void menuOffersWhatApplies()
    {
        Definition screen;
        const QRect row = screen.text().blockRect(0);
        const QPoint beginning(2, row.center().y());
        QPoint link = beginning;
        while (screen.text().linkAt(link).isEmpty() && link.x() < row.right())
            link.rx() += 5;
        QCOMPARE(screen.menu(screen.surface(), beginning),
                 (QStringList{u"Select All"_s, u"Copy Entry"_s}));
        QCOMPARE(screen.menu(screen.surface(), link, u"Copy Link"_s),
                 (QStringList{u"Copy Link"_s, u"Select All"_s, u"Copy Entry"_s}));
        QCOMPARE(QApplication::clipboard()->text(), u"https://a.b/"_s);
        screen.key(Qt::Key_Tab); // to the link
        QCOMPARE(
            screen.menu(*QApplication::focusWidget(), beginning, {}, QContextMenuEvent::Keyboard),
            (QStringList{u"Copy"_s, u"Copy Link"_s, u"Select All"_s, u"Search for “there”"_s}));
        QTest::mouseDClick(&screen.surface(), Qt::LeftButton, {}, beginning);
        const QStringList ofSelection = {u"Copy"_s, u"Select All"_s, u"Search for “First”"_s};
        QCOMPARE(screen.menu(screen.surface(), beginning, u"Copy"_s), ofSelection);
        QCOMPARE(QApplication::clipboard()->text(), u"First"_s);
        QCOMPARE(screen.menu(screen.title(), {2, 9}, u"Select All"_s), ofSelection);
        QVERIFY(screen.text().selectedText().startsWith(u"First words"_s));
        screen.menu(screen.surface(), beginning, u"Search for"_s);
        QCOMPARE(screen.model->session()->rootQuery, u"First words of it. See there."_s);
        QCOMPARE(screen.menu(screen.surface(), beginning), QStringList()); // nothing there yet
        screen.send(u"Some"_s);
        QTRY_VERIFY(screen.shownLength() > 0);
        QCOMPARE(screen.menu(screen.title(), {2, 9}), QStringList{u"Select All"_s});
    }

    void menuCopiesTheEntry()
    {
        Definition screen(u"# Head\n\nA *word* & more."_s);
        screen.menu(screen.title(), {2, 9}, u"Copy Entry"_s);
        const QMimeData& copied = *QApplication::clipboard()->mimeData();
        QCOMPARE(copied.text(), u"# Straße\n\n# Head\n\nA *word* & more.\n\n## See also\n\n"
                                "- Carthage\n- Latin"_s);
        const QString html = copied.html();
        QVERIFY2(html.startsWith(u"<h1>Straße</h1><h1>Head</h1>"_s), qPrintable(html));
        QVERIFY2(html.endsWith("<h2>See also</h2><ul><li>Carthage</li><li>Latin</li></ul>"_L1),
                 qPrintable(html));
        QVERIFY(!screen.text().hasSelection());
    }

    void textSizeIsStepped()
    {
        const Definition screen(longText());
        QTRY_VERIFY(screen.scrollBar().maximum() > 1000);
        screen.scrollBar().setValue(900);
        const QPoint pointer(60, 250); // of the viewport
        const auto readBlock = [&] {
            return screen.text().blockAt(screen.scrollBar().value() + pointer.y() -
                                         screen.text().y());
        };
        const int block = readBlock();
        const auto turn = [&](int units) {
            QWidget& there = *screen.part<ReadingColumn>().viewport();
            QWheelEvent wheel(pointer, there.mapToGlobal(pointer), {}, {0, units}, {},
                              Qt::ControlModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(&there, &wheel);
            QCoreApplication::processEvents();
            QCOMPARE(readBlock(), block);
        };
        using Change = std::function<void()>;
        int count = 0;
        for (const auto& [change, size] : Rows<Change, FontSize>{
                 {[&] { turn(60); }, FontSize::medium},
                 {[&] { turn(60); }, FontSize::large},
                 {[&] { turn(120); }, FontSize::large},
                 {[&] { turn(-360); }, FontSize::small},
                 {[&] { screen.key(Qt::Key_Minus, Qt::ControlModifier); }, FontSize::small},
                 {[&] { screen.key(Qt::Key_Plus, Qt::ControlModifier); }, FontSize::medium},
                 {[&] { screen.key(Qt::Key_Equal, Qt::MetaModifier); }, FontSize::large}}) {
            const InRow row(++count);
            change();
            QCOMPARE(screen.model->fontSize(), size);
        }
    }
};

VARNO_TEST(QApplication, EntryHandsTest)
#include "EntryHandsTest.moc"
