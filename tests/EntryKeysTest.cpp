#include "app/VarnoPanel.h"
#include "reader/TOCEntry.h"
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
};

VARNO_TEST(QApplication, EntryKeysTest)
#include "EntryKeysTest.moc"
