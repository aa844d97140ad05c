#include "app/CloseButton.h"
#include "app/InAppSettingsView.h"
#include "app/SearchView.h"
#include "app/VarnoPanel.h"
#include "reader/EntryView.h"
#include "tests/ControllerFixture.h"
#include "tests/Test.h"

#include <QApplication>
#include <QWindow>

namespace {

struct PanelFixture : ControllerFixture {
    PanelFixture()
    {
        panel.present({});
        if (!QTest::qWaitForWindowActive(&panel))
            qFatal("the panel does not become active");
    }

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(&panel, key, modifiers);
    }
    template <typename Screen>
    [[nodiscard]] bool shows() const
    {
        const auto* screen = panel.findChild<Screen*>();
        return screen && screen->isVisible();
    }

    KeychainTasks keys{KeychainService::shared()};
    VarnoPanel panel{*model,
                     keys,
                     {.label = [] { return QString(); },
                      .makeRecorder = [] { return new QWidget; },
                      .makeNotice = [] { return new QWidget; }}};
};

} // namespace

class PanelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void escapeGoesOneStepAtATime()
    {
        PanelFixture f;
        f.write(u"rome"_s);
        f.model->setShowingFind(true);
        f.key(Qt::Key_Comma, Qt::ControlModifier);
        QVERIFY(f.shows<InAppSettingsView>());
        f.key(Qt::Key_Escape);
        QVERIFY(f.shows<EntryView>());
        for (const auto type :
             {QEvent::KeyRelease, QEvent::ShortcutOverride, QEvent::KeyPress}) { // as it is held
            QKeyEvent event(type, Qt::Key_Escape, {});
            event.setTimestamp(1);
            event.ignore();
            QCoreApplication::sendEvent(f.panel.windowHandle(), &event);
            QCOMPARE(event.isAccepted(), type != QEvent::KeyRelease); // no shortcut
        }
        QVERIFY(f.model->isShowingFind());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QVERIFY(!f.model->isShowingFind());
        QVERIFY(f.shows<EntryView>());
        f.key(Qt::Key_Escape);
        QVERIFY(f.shows<SearchView>());
        f.key(Qt::Key_Escape);
        QVERIFY(!f.panel.isVisible());
    }

    void tabGoesRoundTheScreenInTheOrderSeen()
    {
        PanelFixture f;
        const QString topics = u"\nSEE_ALSO_JSON: [\"Carthage\", \"Latin\"]"_s;
        f.writeArticle(article, {u"Kings"_s, u"Republic"_s});
        f.openSection(u"Kings"_s, u"Text."_s + topics);
        f.model->setShowingSettings(true); // made after the entry
        f.model->setShowingSettings(false);
        f.openSection(u"Republic"_s, u"[A link](https://a.b/)"_s + topics);
        f.model->setShowingFind(true);
        const QStringList once = {u"Find in entry"_s,
                                  u"Previous match (Shift+Return)"_s,
                                  u"Next match (Return)"_s,
                                  u"Close"_s,
                                  u"Kings"_s,
                                  u"Entry"_s,
                                  u"Entry"_s, // a link in it
                                  u"Carthage"_s,
                                  u"Latin"_s,
                                  u"Hide"_s, // the panel's own
                                  u"Search"_s,
                                  articleTitle,
                                  u"Find in entry (Ctrl+F)"_s,
                                  u"Reload entry"_s,
                                  u"Settings"_s};
        QStringList names;
        while (names.size() < 2 * once.size()) {
            names.append(QApplication::focusWidget()->accessibleName());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(names, once + once);
    }

    void commandsWorkWithEitherModifier()
    {
        for (const Qt::KeyboardModifier modifier : {Qt::ControlModifier, Qt::MetaModifier}) {
            PanelFixture f;
            f.write(u"rome"_s);
            f.key(Qt::Key_K, modifier);
            QVERIFY(f.shows<SearchView>());
            f.key(Qt::Key_Comma, modifier);
            QVERIFY(f.shows<InAppSettingsView>());
            f.key(Qt::Key_Comma, modifier);
            QVERIFY(f.shows<SearchView>());
        }
    }

    void nothingIsPreparedWhileItIsHidden()
    {
        PanelFixture f;
        f.model->prepareSearch();
        QVERIFY(!f.claude.preparations.back().stop_requested());
        f.panel.close();
        QVERIFY(f.claude.preparations.back().stop_requested());
    }

    void hidesByTheCornerThatHoveringShows()
    {
        PanelFixture f;
        auto& close = *f.panel.findChild<CloseButton*>();
        const QImage quiet = f.panel.grab(close.geometry()).toImage();
        for (const int y : {5, 200, 5}) {
            QTest::mouseMove(f.panel.windowHandle(), {300, y});
            QTRY_COMPARE(f.panel.grab(close.geometry()).toImage() != quiet, y == 5);
        }
        QTest::mouseClick(f.panel.windowHandle(), Qt::LeftButton, {}, close.geometry().center());
        QVERIFY(!f.panel.isVisible());
    }

    void isHeldByEdgesAndCorners()
    {
        PanelFixture f;
        const int right = f.panel.width() - 1;
        const int bottom = f.panel.height() - 1;
        for (const auto& [place, shape] : {std::pair(QPoint(1, 200), Qt::SizeHorCursor),
                                           {QPoint(200, bottom), Qt::SizeVerCursor},
                                           {QPoint(8, 8), Qt::SizeFDiagCursor},
                                           {QPoint(8, bottom - 8), Qt::SizeBDiagCursor},
                                           {QPoint(right - 2, 0), Qt::SizeBDiagCursor}}) {
            const InRow row(place.x(), place.y());
            QTest::mouseMove(f.panel.windowHandle(), place);
            QTRY_COMPARE(f.panel.childAt(place)->cursor().shape(), shape);
        }
    }

    void comesBackOntoTheScreen()
    {
        PanelFixture f;
        f.panel.close();
        f.panel.move(9000, -5000);
        f.panel.present({});
        QVERIFY(f.panel.screen()->availableGeometry().intersects(f.panel.geometry()));
        QVERIFY(f.panel.y() >= 0);
    }
};

VARNO_TEST(QApplication, PanelTest)
#include "PanelTest.moc"
