#include "tests/RunningProgram.h"

#include <QTest>

using namespace varno;
using namespace Qt::StringLiterals;

/// What the user sees of the program: its shortcut, in any application, and its panel.
class ProgramTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<XDesktop> m_desktop;
    std::unique_ptr<RunningProgram> m_program;

    void toggle() { m_desktop->typeShortcut(); }

    void showPanel()
    {
        toggle();
        QTRY_VERIFY(m_program->hasKeyboard());
    }
    void hidePanel()
    {
        toggle();
        QTRY_VERIFY(!m_program->isShown());
    }

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

    static void setLayout(const QStringList& arguments)
    {
        QCOMPARE(QProcess::execute(u"setxkbmap"_s, arguments), 0);
    }

    void selectDesktop(quint32 number)
    {
        m_desktop->tell(m_desktop->root(), "_NET_CURRENT_DESKTOP", {number});
        QTRY_COMPARE(m_desktop->property(m_desktop->root(), "_NET_CURRENT_DESKTOP"),
                     QList<quint32>{number});
    }

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void shortcutTogglesThePanel_data();
    void shortcutTogglesThePanel();
    void waitsForTheRelease_data();
    void waitsForTheRelease();
    void holdingTogglesOnce();
    void worksOnOtherLayouts_data();
    void worksOnOtherLayouts();
    void manyToggles();
    void hasTheKeyboard();
    void escapeGoesBackAndHides();
    void isAFloatingPanel();
    void standsInTheMiddleAtFirst();
    void keepsItsPlace();
    void isOnEveryDesktop();
};

void ProgramTest::initTestCase()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        QSKIP("There is no X server: Xvfb and openbox are not installed");
}

void ProgramTest::init()
{
    m_desktop = std::make_unique<XDesktop>();
    m_program = std::make_unique<RunningProgram>(*m_desktop);
    QVERIFY(m_program->start());
    QVERIFY(!m_program->isShown());
}

/// Whatever it was used for, it ends in good order, leaves nothing behind and has not complained.
void ProgramTest::cleanup()
{
    if (!m_program)
        return;
    const int status = m_program->end();
    QByteArray console = m_program->console();
    // The toolkit's own, of a window that is hidden before it has heard that it is shown.
    console.replace("qt.qpa.xcb: internal error:  void "
                    "QXcbWindow::setNetWmStateOnUnmappedWindow() called on mapped window\n",
                    "");
    m_program.reset();
    m_desktop.reset();
    QCOMPARE(console, QByteArray());
    QCOMPARE(status, 0);
}

void ProgramTest::shortcutTogglesThePanel_data()
{
    QTest::addColumn<QByteArray>("state"); // of the window below
    QTest::addColumn<QList<int>>("locks");
    QTest::newRow("over a window") << QByteArray() << QList<int>();
    QTest::newRow("over a full screen") << QByteArray("_NET_WM_STATE_FULLSCREEN") << QList<int>();
    QTest::newRow("over the topmost window") << QByteArray("_NET_WM_STATE_ABOVE") << QList<int>();
    QTest::newRow("with CapsLock") << QByteArray() << QList<int>{pcKey::capsLock};
    QTest::newRow("with both locks") << QByteArray() << QList<int>{pcKey::capsLock, pcKey::numLock};
}

void ProgramTest::shortcutTogglesThePanel()
{
    QFETCH(const QByteArray, state);
    QFETCH(const QList<int>, locks);
    const xcb_window_t other = m_desktop->openWindow(state.isEmpty() ? nullptr : state.constData());
    QVERIFY(other != XCB_NONE);
    for (const int lock : locks)
        m_desktop->type(static_cast<quint8>(lock));
    for (int time = 0; time < 2; ++time) {
        showPanel();
        QTRY_COMPARE(
            m_desktop->property(m_desktop->root(), "_NET_CLIENT_LIST_STACKING").constLast(),
            m_program->panel());
        hidePanel();
        QTRY_COMPARE(m_desktop->focus(), other);
    }
    for (const int lock : locks)
        m_desktop->type(static_cast<quint8>(lock));
}

void ProgramTest::waitsForTheRelease_data()
{
    QTest::addColumn<bool>("modifiersFirst");
    QTest::newRow("of the key first") << false;
    QTest::newRow("of the modifiers first") << true;
}

void ProgramTest::waitsForTheRelease()
{
    QFETCH(const bool, modifiersFirst);
    QVERIFY(m_desktop->openWindow() != XCB_NONE);
    for (const bool shown : {true, false}) {
        m_desktop->pressModifiers();
        m_desktop->press(pcKey::f);
        if (modifiersFirst)
            m_desktop->liftModifiers();
        QVERIFY(m_program->settles());
        QCOMPARE(m_program->isShown(), !shown);
        m_desktop->lift(pcKey::f);
        QTRY_COMPARE(m_program->isShown(), shown);
        if (!modifiersFirst)
            m_desktop->liftModifiers();
    }
}

void ProgramTest::holdingTogglesOnce()
{
    m_desktop->setRepeating(true);
    m_desktop->pressModifiers();
    m_desktop->press(pcKey::f);
    // For longer than a keyboard waits before it repeats.
    QVERIFY(!QTest::qWaitFor([this] { return m_program->isShown(); }, 1000));
    m_desktop->lift(pcKey::f);
    m_desktop->liftModifiers();
    QTRY_VERIFY(m_program->isShown());
    QVERIFY(m_program->settles());
    QVERIFY(m_program->isShown());
}

void ProgramTest::worksOnOtherLayouts_data()
{
    QTest::addColumn<QStringList>("layout");
    QTest::addColumn<bool>("second");
    QTest::newRow("German") << QStringList{u"de"_s} << false;
    QTest::newRow("Russian") << QStringList{u"ru"_s} << false;
    QTest::newRow("the second of two")
        << QStringList{u"us,ru"_s, u"-option"_s, u"grp:sclk_toggle"_s} << true;
}

void ProgramTest::worksOnOtherLayouts()
{
    QFETCH(const QStringList, layout);
    QFETCH(const bool, second);
    setLayout(layout);
    if (second)
        m_desktop->type(pcKey::scrollLock);
    showPanel();
    hidePanel();
    if (second)
        m_desktop->type(pcKey::scrollLock);
    setLayout({u"us"_s, u"-option"_s});
    showPanel();
}

void ProgramTest::manyToggles()
{
    showPanel();
    hidePanel();
    QVERIFY(m_program->settles());
    const qsizetype openFiles = m_program->openFiles();
    QVERIFY(openFiles > 0);
    m_desktop->pressModifiers();
    for (int count = 0; count < 200; ++count)
        m_desktop->type(pcKey::f);
    m_desktop->liftModifiers();
    QVERIFY(m_program->settles());
    QTRY_VERIFY(!m_program->isShown());
    QTRY_VERIFY(m_program->openFiles() <= openFiles);
    showPanel();
    verifyFloats();
    hidePanel();
}

void ProgramTest::hasTheKeyboard()
{
    QVERIFY(m_desktop->openWindow() != XCB_NONE);
    showPanel();
    m_desktop->type("opal");
    m_desktop->type(pcKey::enter);
    QTRY_VERIFY(m_program->hasSearched("opal"));
    hidePanel();
    showPanel();
    m_desktop->type(pcKey::escape); // from the entry to a new search
    m_desktop->type("onyx");
    m_desktop->type(pcKey::enter);
    QTRY_VERIFY(m_program->hasSearched("onyx, opal"));
}

void ProgramTest::escapeGoesBackAndHides()
{
    showPanel();
    m_desktop->typeWith(pcKey::control, pcKey::comma);
    m_desktop->type(pcKey::escape); // from the settings
    QVERIFY(m_program->settles());
    QVERIFY(m_program->isShown());
    m_desktop->type(pcKey::escape);
    QTRY_VERIFY(!m_program->isShown());
    showPanel();
}

void ProgramTest::isAFloatingPanel()
{
    for (int time = 0; time < 2; ++time) {
        showPanel();
        verifyFloats();
        hidePanel();
    }
}

void ProgramTest::standsInTheMiddleAtFirst()
{
    constexpr int bar = 40;
    const QRect screen = m_desktop->place(m_desktop->root());
    m_desktop->openBarOnTop(static_cast<quint16>(screen.width()), bar);
    QTRY_COMPARE(m_desktop->property(m_desktop->root(), "_NET_WORKAREA").value(1), quint32(bar));
    QVERIFY(m_program->settles());
    showPanel();
    const QRect room = screen.adjusted(0, bar, 0, 0);
    const QRect place = m_desktop->place(m_program->panel());
    QCOMPARE(place.size(), QSize(860, 620));
    QCOMPARE(place.center(), room.center());
}

void ProgramTest::keepsItsPlace()
{
    constexpr quint32 fromUserWithAll = 0x2F00; // both of the place, both of the size
    const QRect chosen(123, 456, 700, 500);
    showPanel();
    m_desktop->tell(m_program->panel(), "_NET_MOVERESIZE_WINDOW",
                    {fromUserWithAll, 123, 456, 700, 500});
    QTRY_COMPARE(m_desktop->place(m_program->panel()), chosen);
    for (int time = 0; time < 3; ++time) {
        hidePanel();
        showPanel();
        QCOMPARE(m_desktop->place(m_program->panel()), chosen);
    }
}

void ProgramTest::isOnEveryDesktop()
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
    selectDesktop(0);
}

VARNO_TEST(QCoreApplication, ProgramTest)
#include "ProgramTest.moc"
