#include "app/InAppSettingsView.h"
#include "app/SearchView.h"
#include "app/VarnoPanel.h"
#include "reader/EntryView.h"
#include "tests/ControllerFixture.h"
#include "tests/Test.h"

#include <QApplication>

namespace {

struct PanelFixture : ControllerFixture {
    PanelFixture()
    {
        panel.present(0);
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
    VarnoPanel panel{
        *model,
        keys,
        {.label = [] { return QString(); }, .makeRecorder = [] { return new QWidget; }}};
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
        QTest::simulateEvent(QApplication::focusWidget(), true, Qt::Key_Escape, {}, {}, true);
        QVERIFY(f.model->isShowingFind()); // while it is held
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QVERIFY(!f.model->isShowingFind());
        QVERIFY(f.shows<EntryView>());
        f.key(Qt::Key_Escape);
        QVERIFY(f.shows<SearchView>());
        f.key(Qt::Key_Escape);
        QVERIFY(!f.panel.isVisible());
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

    void comesBackOntoTheScreen()
    {
        PanelFixture f;
        f.panel.close();
        f.panel.move(9000, -5000);
        f.panel.present(0);
        QVERIFY(f.panel.screen()->availableGeometry().intersects(f.panel.geometry()));
        QVERIFY(f.panel.y() >= 0);
    }
};

VARNO_TEST(QApplication, PanelTest)
#include "PanelTest.moc"
