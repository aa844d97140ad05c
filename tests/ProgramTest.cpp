#include "tests/ProgramFixture.h"
#include "tests/Test.h"

/// What the user sees of the program: its shortcut, in any application, and its panel.
class ProgramTest : public ProgramFixture {
    Q_OBJECT

private:
    /// What makes it a panel to a window manager.
    void verifyFloats()
    {
        const xcb_window_t panel = m_program->panel();
        for (const char* const state :
             {"_NET_WM_STATE_ABOVE", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"})
            QTRY_VERIFY2(
                m_desktop->property(panel, "_NET_WM_STATE").contains(m_desktop->atom(state)),
                state);
        QCOMPARE(m_desktop->property(panel, "_NET_WM_DESKTOP"), QList<quint32>{0xFFFFFFFF});
        QCOMPARE(m_desktop->property(panel, "_NET_FRAME_EXTENTS"), QList<quint32>({0, 0, 0, 0}));
    }

    void selectDesktop(quint32 number)
    {
        m_desktop->tell(m_desktop->root(), "_NET_CURRENT_DESKTOP", {number});
        QTRY_COMPARE(m_desktop->property(m_desktop->root(), "_NET_CURRENT_DESKTOP"),
                     QList<quint32>{number});
    }

private Q_SLOTS:
    void init()
    {
        ProgramFixture::init();
        QVERIFY(m_program->start());
        QVERIFY(!m_program->isShown());
    }

    void shortcutTogglesThePanelOverAnyWindow()
    {
        for (const char* const state : {static_cast<const char*>(nullptr),
                                        "_NET_WM_STATE_FULLSCREEN", "_NET_WM_STATE_ABOVE"}) {
            const xcb_window_t other = m_desktop->openWindow(state);
            QVERIFY2(other != XCB_NONE, state);
            showPanel();
            QTRY_COMPARE(
                m_desktop->property(m_desktop->root(), "_NET_CLIENT_LIST_STACKING").constLast(),
                m_program->panel());
            verifyFloats();
            hidePanel();
            QTRY_COMPARE(m_desktop->focus(), other);
        }
    }

    void waitsForTheRelease()
    {
        for (const bool shown : {true, false}) {
            m_desktop->pressModifiers();
            m_desktop->press(pcKey::f);
            QVERIFY(m_program->settles());
            QCOMPARE(m_program->isShown(), !shown);
            m_desktop->lift(pcKey::f);
            QTRY_COMPARE(m_program->isShown(), shown);
            m_desktop->liftModifiers();
        }
    }

    void goesOneStepForAHeldKey()
    {
        m_desktop->setRepeating(true);
        showPanel();
        search(*m_desktop, "opal");
        m_desktop->typeWith(pcKey::control, pcKey::comma);
        QVERIFY(m_program->settles());
        m_desktop->press(pcKey::escape);
        QTest::qWait(1500); // a mistake would hide the panel
        m_desktop->lift(pcKey::escape);
        QVERIFY(m_program->isShown());
    }

    void manyToggles()
    {
        m_desktop->pressModifiers();
        for (int count = 0; count < 200; ++count)
            m_desktop->type(pcKey::f);
        m_desktop->liftModifiers();
        QVERIFY(m_program->settles());
        QTRY_VERIFY(!m_program->isShown());
        showPanel();
        verifyFloats();
    }

    void hasTheKeyboard()
    {
        QVERIFY(m_desktop->openWindow() != XCB_NONE);
        showPanel();
        search(*m_desktop, "opal");
        hidePanel();
        showPanel();
        m_desktop->type(pcKey::escape); // from the entry to a new search
        m_desktop->type("onyx");
        using Keys = std::initializer_list<quint8>;
        for (const quint8 key : Keys{pcKey::a, pcKey::x, pcKey::v, pcKey::v, pcKey::b})
            m_desktop->typeWith(pcKey::super, key);
        m_desktop->type(pcKey::enter);
        QTRY_VERIFY(m_program->hasSearched("onyxonyx, opal"));
    }

    void isDraggedByItsMargins()
    {
        showPanel();
        const QRect place = m_desktop->place(m_program->panel());
        const QPoint margin = place.topLeft() + QPoint(40, 40);
        const auto drag = [&](const QPoint& way) {
            m_desktop->point(margin);
            m_desktop->pressButton();
            m_desktop->point(margin + way);
        };
        const auto isGlued = [&] { // to a pointer whose button is up
            const QRect before = m_desktop->place(m_program->panel());
            m_desktop->point(margin + QPoint(90, 90));
            return !m_program->settles() || m_desktop->place(m_program->panel()) != before;
        };
        drag({3, 3});
        QVERIFY(m_program->settles());
        m_desktop->liftButton();
        QVERIFY(!isGlued());
        QCOMPARE(m_desktop->place(m_program->panel()), place);
        drag({30, 30});
        int way = 30;
        QTRY_VERIFY((m_desktop->point(margin + QPoint(++way, 30)),
                     m_desktop->place(m_program->panel()).x() > place.x() + 5));
        m_desktop->liftButton();
        QVERIFY(!isGlued());
        drag({300, 200}); // and lifted before the program has heard of it
        m_desktop->liftButton();
        QVERIFY(m_program->settles());
        QVERIFY(!isGlued());
    }

    void keepsItsPlace()
    {
        constexpr quint32 fromUserWithAll = 0x2F00; // both of the place, both of the size
        const QRect chosen(123, 456, 700, 500);
        showPanel();
        const QRect first = m_desktop->place(m_program->panel());
        QCOMPARE(first.size(), QSize(860, 620));
        QCOMPARE(first.center(), m_desktop->place(m_desktop->root()).center());
        m_desktop->tell(m_program->panel(), "_NET_MOVERESIZE_WINDOW",
                        {fromUserWithAll, 123, 456, 700, 500});
        QTRY_COMPARE(m_desktop->place(m_program->panel()), chosen);
        hidePanel();
        showPanel();
        QCOMPARE(m_desktop->place(m_program->panel()), chosen);
    }

    void isOnEveryDesktop()
    {
        showPanel();
        const QRect place = m_desktop->place(m_program->panel());
        selectDesktop(2);
        QVERIFY(m_program->settles());
        QVERIFY(m_program->isShown());
        hidePanel();
        selectDesktop(3);
        showPanel();
        QCOMPARE(m_desktop->place(m_program->panel()), place);
        QCOMPARE(m_desktop->property(m_desktop->root(), "_NET_CURRENT_DESKTOP"), QList<quint32>{3});
        m_desktop->tell(m_program->panel(), "_NET_WM_DESKTOP", {1}); // as some managers do
        QTRY_VERIFY(!m_program->isShown());
        QVERIFY(m_program->activate());
        QTRY_VERIFY(m_program->hasKeyboard());
        verifyFloats();
        selectDesktop(0);
    }
};

VARNO_TEST(QCoreApplication, ProgramTest)
#include "ProgramTest.moc"
