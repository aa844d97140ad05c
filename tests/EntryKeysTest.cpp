#include "tests/EntryScreen.h"
#include "tests/Test.h"

#include <QFocusFrame>

namespace {

/// The screen with a section that has related topics, and a page of many lines.
struct SectionScreen : Screen {
    SectionScreen()
    {
        QStringList sections;
        for (int i = 0; i < 30; ++i)
            sections.append(u"Section %1"_s.arg(i));
        writeArticle(article, sections);
        openSection(u"Section 1"_s, longText() + relatedTopicsLine);
        QTRY_VERIFY(part<MarkdownContentView>().blockRect(59).isValid());
    }
};

/// Whether all of a widget can be seen.
bool isWhole(const QWidget& widget)
{
    return widget.visibleRegion().boundingRect() == widget.rect();
}

} // namespace

class EntryKeysTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatIsOnShowIsInViewInTheContents()
    {
        SectionScreen screen;
        for (const QString& section : {u"Section 25"_s, u"Section 3"_s}) {
            screen.openSection(section);
            QTRY_VERIFY(isWhole(*shownButton(screen.view, section)));
        }
        screen.window.hide();
        screen.openSection(u"Section 25"_s);
        screen.window.show();
        QTRY_VERIFY(isWhole(*shownButton(screen.view, u"Section 25"_s)));
    }

    void whatHasTheFocusIsInView()
    {
        SectionScreen screen;
        for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
            screen.button(u"Search"_s)->setFocus(Qt::TabFocusReason);
            int rings = 0;
            do {
                const QWidget& focus = *QApplication::focusWidget();
                const InRow row(key, focus.accessibleName());
                QCoreApplication::processEvents();
                const auto* ring = screen.window.findChild<QFocusFrame*>();
                QVERIFY(!focus.visibleRegion().isEmpty());
                QVERIFY(!ring || isWhole(*ring));
                rings += ring ? 1 : 0;
                screen.key(key);
            } while (!screen.button(u"Search"_s)->hasFocus());
            QCOMPARE(rings, 7);
        }
    }

    void whatIsOpenedByKeyIsReadByKeys()
    {
        for (const QString& opener : {u"Section 2"_s, u"Carthage"_s, u"Reload entry"_s}) {
            const InRow row(opener);
            SectionScreen screen;
            shownButton(screen.view, opener)->setFocus(Qt::TabFocusReason);
            screen.key(Qt::Key_Space);
            const std::size_t requests = screen.claude.entries.size();
            screen.send(longText());
            QTRY_VERIFY(screen.scrollBar().maximum() > 1000);
            QVERIFY(screen.part<QTextBrowser>().hasFocus());
            const int page = screen.scrollBar().pageStep();
            for (const int value : {page, 2 * page}) {
                screen.key(Qt::Key_Space);
                QCOMPARE(screen.scrollBar().value(), value);
            }
            QCOMPARE(screen.claude.entries.size(), requests);
        }
    }

    void keysWriteThePageAgain()
    {
        for (const auto& [key, modifiers, query, requests] :
             Rows<Qt::Key, Qt::KeyboardModifiers, QString, int>{
                 {Qt::Key_F5, {}, article, 2},
                 {Qt::Key_R, Qt::ControlModifier, article, 2},
                 {Qt::Key_R, Qt::MetaModifier, article, 2},
                 {Qt::Key_Return, Qt::ControlModifier, article, 0},
                 {Qt::Key_Return, Qt::ControlModifier, u"rome"_s, 1}, // it is an article then
                 {Qt::Key_Enter, Qt::MetaModifier | Qt::KeypadModifier, u"rome"_s, 1}}) {
            const InRow row(key, query);
            Screen screen;
            screen.write(query);
            screen.model->setShowingFind(true);
            screen.key(key, modifiers);
            screen.model->setShowingFind(false);
            screen.key(key, modifiers);
            QCOMPARE(screen.claude.entries.size(), 1U + requests);
            QVERIFY(screen.model->currentPage()->entryType == EntryType::full);
        }
    }

    void keysScrollFromAnywhere()
    {
        SectionScreen screen;
        QScrollBar& bar = screen.scrollBar();
        for (const QString& place : {u"Settings"_s, u"Section 0"_s, u"Carthage"_s}) {
            for (const auto& [key, modifiers, value] : Rows<Qt::Key, Qt::KeyboardModifiers, int>{
                     {Qt::Key_PageDown, {}, 1000 + bar.pageStep()},
                     {Qt::Key_PageUp, {}, 1000 - bar.pageStep()},
                     {Qt::Key_Home, Qt::ControlModifier, 0},
                     {Qt::Key_End, Qt::ControlModifier, bar.maximum()},
                     {Qt::Key_Down, {}, 1024},
                     {Qt::Key_Up, {}, 976},
                     {Qt::Key_Home, {}, 0},
                     {Qt::Key_End, {}, bar.maximum()}}) {
                const InRow row(place, key, modifiers);
                shownButton(screen.view, place)->setFocus(Qt::TabFocusReason);
                bar.setValue(1000);
                const bool isForList =
                    place == "Section 0"_L1 && (key == Qt::Key_Down || key == Qt::Key_Up);
                screen.key(key, modifiers);
                QCOMPARE(bar.value(), isForList ? 1000 : value);
            }
        }
    }

    void tabIntoTheTextLeavesThePageWhereItIs()
    {
        SectionScreen screen;
        screen.openSection(u"Section 2"_s, u"[One](https://a.b/)\n\n"_s + longText() +
                                               u"[Two](https://c.d/)"_s + relatedTopicsLine);
        QTRY_VERIFY(screen.button(u"Latin"_s));
        QScrollBar& bar = screen.scrollBar();
        screen.button(u"Carthage"_s)->setFocus(Qt::TabFocusReason);
        const int end = bar.value();
        QVERIFY(end > 1000);
        screen.key(Qt::Key_Backtab);
        QVERIFY(screen.part<QTextBrowser>().hasFocus());
        QCOMPARE(bar.value(), end);
        bar.setValue(500);
        screen.key(Qt::Key_Backtab); // to the last link
        QTRY_VERIFY(bar.value() > 1000);
        screen.key(Qt::Key_Backtab);
        QTRY_VERIFY(bar.value() < 100);
    }
};

VARNO_TEST(QApplication, EntryKeysTest)
#include "EntryKeysTest.moc"
