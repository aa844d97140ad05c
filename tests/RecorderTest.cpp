#include "app/PanelKeys.h"
#include "platform/fake/FakeHotKeyEvents.h"
#include "platform/fake/FakeKeyboard.h"
#include "platform/fake/FakePreferencesStore.h"
#include "platform/linux/XcbConnection.h"
#include "platform/linux/XcbHotKeyEvents.h"
#include "platform/linux/XcbKeyboard.h"
#include "recorder/RecorderCocoa.h"
#include "recorder/RefusalAlert.h"
#include "tests/Test.h"
#include "tests/XDesktop.h"

#include <QApplication>
#include <QShortcut>
#include <QSignalSpy>
#include <QVBoxLayout>

using Name = KeyboardShortcuts::Name;

namespace {

const Shortcut optionCommandF(Key::f, Modifier::option | Modifier::command);
const Shortcut optionCommandJ(Key::j, Modifier::option | Modifier::command);

RefusalAlert* alert()
{
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* found = qobject_cast<RefusalAlert*>(widget); found && found->isVisible())
            return found;
    return nullptr;
}

/// A window with a recorder and another widget.
struct Screen {
    explicit Screen(KeyboardShortcuts& shortcuts, const Name& name,
                    const RecorderCocoa::Change& change)
        : recorder(name, change, shortcuts)
    {
        auto* const column = new QVBoxLayout(&window);
        column->addWidget(&recorder);
        column->addWidget(&other);
        other.setFocusPolicy(Qt::StrongFocus);
        other.setMinimumSize(60, 60);
        setTheme(window, AppTheme::cream);
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }

    QWidget window;
    RecorderCocoa recorder;
    QWidget other;
};

} // namespace

class RecorderTest : public QObject {
    Q_OBJECT

private:
    FakePreferencesStore m_preferences;
    FakeHotKeyEvents m_events;
    FakeKeyboard m_keyboard;
    std::unique_ptr<KeyboardShortcuts> m_shortcuts;
    std::unique_ptr<Screen> m_screen;
    QList<std::optional<Shortcut>> m_changes;
    QList<bool> m_active; ///< whether it records, each time that this changed

    Name openVarno() { return Name(u"openVarno"_s, optionCommandF, *m_shortcuts); }
    std::optional<Shortcut> stored() { return m_shortcuts->getShortcut(openVarno()); }
    RecorderCocoa& recorder() { return m_screen->recorder; }
    PlainButton& clearButton() { return *recorder().findChild<PlainButton*>(); }
    void click() { QTest::mouseClick(&recorder(), Qt::LeftButton); }

    void start(HotKeyEvents& events, Keyboard& keyboard)
    {
        m_screen.reset();
        m_shortcuts = std::make_unique<KeyboardShortcuts>(m_preferences, events, keyboard);
        connect(m_shortcuts.get(), &KeyboardShortcuts::recorderActiveStatusDidChange, this,
                [this](bool active) { m_active << active; });
        m_screen = std::make_unique<Screen>(
            *m_shortcuts, openVarno(),
            [this](const std::optional<Shortcut>& shortcut) { m_changes << shortcut; });
    }

    /// What the window system sends for the key.
    void press(Key key, Qt::KeyboardModifiers modifiers = {})
    {
        sendKey(FakeKeyboard::scanCode(static_cast<int>(key)), modifiers);
    }
    void sendKey(quint32 scanCode, Qt::KeyboardModifiers modifiers)
    {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_unknown, modifiers, scanCode, 0, 0);
        QCoreApplication::sendEvent(&recorder(), &event);
    }
    void reserve(const Shortcut& shortcut)
    {
        m_events.reserved.insert({shortcut.carbonKeyCode(), shortcut.carbonModifiers()});
    }
    void pressOptionCommand(Key key) { press(key, Qt::AltModifier | Qt::MetaModifier); }

    /// The field has not changed anything.
    void verifyUnchanged()
    {
        QCOMPARE(stored(), std::optional(optionCommandF));
        QVERIFY(m_changes.isEmpty());
    }

private Q_SLOTS:
    void init()
    {
        m_preferences.values.clear();
        m_events.reserved.clear();
        start(m_events, m_keyboard);
        m_changes.clear();
        m_active.clear();
    }

    void cleanup()
    {
        m_screen.reset();
        m_shortcuts.reset();
    }

    void recordsACombination()
    {
        QCOMPARE(recorder().text(), u"⌥⌘F"_s);
        click();
        QVERIFY(recorder().isRecording());
        QCOMPARE(recorder().text(), QString());
        QVERIFY(!clearButton().isVisible());
        sendKey(FakeKeyboard::modifierScanCode, Qt::MetaModifier);
        pressOptionCommand(Key::j);
        QVERIFY(!recorder().isRecording());
        QCOMPARE(recorder().text(), u"⌥⌘J"_s);
        QCOMPARE(stored(), std::optional(optionCommandJ));
        QCOMPARE(m_changes, QList{std::optional(optionCommandJ)});
        QCOMPARE(m_active, QList({true, false}));
        for (const Key key : {Key::escape, Key::tab, Key::deleteKey, Key::forwardDelete}) {
            click();
            press(key, Qt::AltModifier);
            QCOMPARE(stored(), std::optional(Shortcut(key, Modifier::option)));
        }
        m_shortcuts->setShortcut(optionCommandF, openVarno()); // by somebody else
        m_keyboard.setCharacters({{static_cast<int>(Key::f), u"а"_s}});
        QCOMPARE(recorder().text(), u"⌥⌘А"_s);
        m_keyboard.setCharacters({});
    }

    void endsWithoutChange()
    {
        for (const auto& [name, end] : Rows<const char*, std::function<void()>>{
                 {"Escape", [this] { press(Key::escape); }},
                 {"Tab", [this] { press(Key::tab); }},
                 {"click elsewhere",
                  [this] { QTest::mouseClick(&m_screen->other, Qt::LeftButton); }},
                 {"focus elsewhere", [this] { m_screen->other.setFocus(); }},
                 {"hidden", [this] { recorder().hide(); }},
                 {"destroyed", [this] { m_screen.reset(); }}}) {
            const InRow row(name);
            init();
            click();
            end();
            QCOMPARE(m_active, QList({true, false}));
            if (m_screen)
                pressOptionCommand(Key::j); // nobody listens
            verifyUnchanged();
        }
    }

    void clears()
    {
        for (const auto& [name, clear] : Rows<const char*, std::function<void()>>{
                 {"button", [this] { clearButton().click(); }},
                 {"Backspace", [this] { click(), press(Key::deleteKey); }},
                 {"Delete", [this] { click(), press(Key::forwardDelete); }}}) {
            const InRow row(name);
            init();
            clear();
            QVERIFY(!stored());
            QCOMPARE(m_changes, QList{std::optional<Shortcut>()});
            QCOMPARE(recorder().text(), QString());
            QVERIFY(!clearButton().isVisible());
        }
    }

    void programsOwnShortcutsWait()
    {
        QShortcut own(Qt::ALT | Qt::Key_J, &m_screen->window);
        const QSignalSpy fired(&own, &QShortcut::activated);
        for (int time = 0; time < 2; ++time) {
            QTest::keyClick(&m_screen->window, Qt::Key_J, Qt::AltModifier);
            QCOMPARE(fired.size(), 1);
            click();
        }
    }

    void menuItemsAreRefused()
    {
        reserve(optionCommandJ); // the menu comes first
        recorder().setMenuItems(
            [] { return QList<MenuItem>{{.title = u"<b>Jump"_s, .shortcut = optionCommandJ}}; });
        click();
        pressOptionCommand(Key::j);
        QVERIFY(alert());
        QVERIFY(alert()->text().contains(u"<b>Jump"_s));
        QVERIFY(!alert()->forceButton().isVisible());
        alert()->reject();
        verifyUnchanged();
        QVERIFY(recorder().isRecording()); // it goes on
        pressOptionCommand(Key::f);
        QCOMPARE(m_changes.size(), 1);
    }

    void keysThatAreNeeded()
    {
        m_keyboard.setCharacters({{static_cast<int>(Key::a), u"q"_s}}); // French
        const ShortcutRules rules{.menuItems = panelKeys(m_keyboard)};
        for (const auto& [shortcut, reason] :
             Rows<Shortcut, QString>{{Shortcut(Key::k, Modifier::command), u"New search"_s},
                                     {Shortcut(Key::a, Modifier::control), u"Quit"_s},
                                     {Shortcut(Key::leftArrow, Modifier::control), u"Back"_s},
                                     {Shortcut(Key::q, Modifier::control), u"none"_s},
                                     {Shortcut(Key::k, {}), u"system"_s},
                                     {Shortcut(Key::keypadEnter, Modifier::shift), u"system"_s},
                                     {Shortcut(Key::f5, {}), u"none"_s},
                                     {Shortcut(Key::k, Modifier::option), u"none"_s}}) {
            const auto refusal = refusalOf(shortcut, rules);
            const bool bySystem = refusal && refusal->menuItem.isEmpty();
            QCOMPARE(!refusal ? u"none"_s : bySystem ? u"system"_s : refusal->menuItem, reason);
        }
        m_keyboard.setCharacters({});
    }

    void optionAlone()
    {
        for (const auto& [shortcut, minor, isRefused] :
             Rows<Shortcut, int, bool>{{Shortcut(Key::j, Modifier::option), 1, true},
                                       {Shortcut(Key::j, Modifier::option), 2, false},
                                       {optionCommandJ, 1, false}}) {
            const QOperatingSystemVersion system(QOperatingSystemVersion::MacOS, 15, minor);
            QCOMPARE(refusalOf(shortcut, {.system = system}).has_value(), isRefused);
        }
    }

    void reservedCanBeForced()
    {
        for (const bool forced : {true, false}) {
            init();
            reserve(optionCommandJ);
            click();
            pressOptionCommand(Key::j);
            QVERIFY(alert());
            if (forced)
                alert()->forceButton().click();
            else
                QTest::keyClick(alert(), Qt::Key_Escape);
            QVERIFY(!alert());
            QCOMPARE(stored(), std::optional(forced ? optionCommandJ : optionCommandF));
            QCOMPARE(recorder().isRecording(), !forced);
        }
        pressOptionCommand(Key::j);
        QVERIFY(alert());
        recorder().hide();
        QVERIFY(!alert());
    }

    void realKeys()
    {
        if (QGuiApplication::platformName() != u"xcb")
            QSKIP("There is no X server: Xvfb and openbox are not installed");
        XDesktop otherProgram;
        XcbConnection connection;
        XcbHotKeyEvents events(connection);
        XcbKeyboard keyboard(connection);
        start(events, keyboard);
        int opened = 0;
        m_shortcuts->onKeyUp(openVarno(), [&opened] { ++opened; });
        QVERIFY(otherProgram.grab(pcKey::j));

        click();
        otherProgram.typeShortcut(); // its own: reaches the recorder and does not fire
        QTRY_COMPARE(m_changes, QList{std::optional(optionCommandF)});
        QCOMPARE(opened, 0);
        const XcbReply<xcb_get_input_focus_reply_t> heard(
            xcb_get_input_focus_reply( // by the server
                connection.get(), xcb_get_input_focus(connection.get()), nullptr));
        otherProgram.typeShortcut();
        QTRY_COMPARE(opened, 1);
        QTRY_VERIFY(m_screen->window.isActiveWindow());
        click();
        otherProgram.typeShortcut(pcKey::j); // another program's: reaches it all the same
        QTRY_VERIFY(alert());
        QTRY_VERIFY(
            otherProgram.property(static_cast<xcb_window_t>(alert()->winId()), "_NET_WM_STATE")
                .contains(otherProgram.atom("_NET_WM_STATE_SKIP_TASKBAR")));
        alert()->forceButton().click();
        QCOMPARE(stored(), std::optional(optionCommandJ));
        QVERIFY(!m_shortcuts->isEnabled(openVarno()));
        cleanup();
    }
};

VARNO_TEST(QApplication, RecorderTest)
#include "RecorderTest.moc"
