#include "platform/fake/FakeHotKeyEvents.h"
#include "platform/fake/FakeKeyboard.h"
#include "platform/fake/FakePreferencesStore.h"
#include "platform/linux/XcbConnection.h"
#include "platform/linux/XcbHotKeyEvents.h"
#include "platform/linux/XcbKeyboard.h"
#include "recorder/RecorderCocoa.h"
#include "recorder/RefusalAlert.h"
#include "tests/TestMain.h"

#include <QApplication>
#include <QPointer>
#include <QShortcut>
#include <QSignalSpy>
#include <QVBoxLayout>

#include <xcb/xtest.h>

using namespace varno;
using namespace Qt::StringLiterals;
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

    void click() { QTest::mouseClick(&recorder, Qt::LeftButton); }

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

    Name openVarno() { return Name(u"openVarno"_s, optionCommandF, *m_shortcuts); }
    std::optional<Shortcut> stored() { return m_shortcuts->getShortcut(openVarno()); }
    RecorderCocoa& recorder() { return m_screen->recorder; }

    RecorderCocoa::Change noteChange()
    {
        return [this](const std::optional<Shortcut>& shortcut) { m_changes << shortcut; };
    }

    /// What the window system sends for the key.
    void press(Key key, Qt::KeyboardModifiers modifiers = {})
    {
        sendKey(FakeKeyboard::scanCode(static_cast<int>(key)), modifiers);
    }
    void sendKey(quint32 scanCode, Qt::KeyboardModifiers modifiers)
    {
        QWidget* const receiver =
            QApplication::focusWidget() ? QApplication::focusWidget() : &recorder();
        QKeyEvent event(QEvent::KeyPress, Qt::Key_unknown, modifiers, scanCode, 0, 0);
        QCoreApplication::sendEvent(receiver, &event);
    }
    void press(const Shortcut& shortcut)
    {
        Qt::KeyboardModifiers modifiers;
        modifiers.setFlag(Qt::AltModifier, shortcut.modifiers().testFlag(Modifier::option));
        modifiers.setFlag(Qt::MetaModifier, shortcut.modifiers().testFlag(Modifier::command));
        press(static_cast<Key>(shortcut.carbonKeyCode()), modifiers);
    }

    /// The field has not changed anything.
    void verifyUnchanged()
    {
        QCOMPARE(stored(), std::optional(optionCommandF));
        QVERIFY(m_changes.isEmpty());
    }

    PlainButton& clearButton() { return *recorder().findChild<PlainButton*>(); }

private Q_SLOTS:
    void init()
    {
        m_preferences.values.clear();
        m_events.reserved.clear();
        m_changes.clear();
        m_shortcuts = std::make_unique<KeyboardShortcuts>(m_preferences, m_events, m_keyboard);
        m_screen = std::make_unique<Screen>(*m_shortcuts, openVarno(), noteChange());
    }

    void cleanup()
    {
        m_screen.reset();
        m_shortcuts.reset();
    }

    void recordsACombination()
    {
        QSignalSpy active(m_shortcuts.get(), &KeyboardShortcuts::recorderActiveStatusDidChange);
        QCOMPARE(recorder().size(), QSize(130, 24));
        QCOMPARE(recorder().text(), u"⌥⌘F"_s);
        QVERIFY(clearButton().isVisible());
        m_screen->click();
        QVERIFY(recorder().isRecording());
        QCOMPARE(recorder().text(), QString());
        QVERIFY(!clearButton().isVisible());
        sendKey(FakeKeyboard::modifierScanCode, Qt::MetaModifier);
        press(optionCommandJ);
        QVERIFY(!recorder().isRecording());
        QCOMPARE(recorder().text(), u"⌥⌘J"_s);
        QVERIFY(clearButton().isVisible());
        QCOMPARE(stored(), std::optional(optionCommandJ));
        QCOMPARE(m_changes, QList{std::optional(optionCommandJ)});
        QCOMPARE(active, QList<QVariantList>({{true}, {false}}));
    }

    void endsWithoutChange_data()
    {
        QTest::addColumn<std::function<void()>>("end");
        const auto row = [](const char* name, const std::function<void()>& end) {
            QTest::newRow(name) << end;
        };
        row("Escape", [this] { press(Key::escape); });
        row("Tab", [this] { press(Key::tab); });
        row("click elsewhere", [this] { QTest::mouseClick(&m_screen->other, Qt::LeftButton); });
        row("focus elsewhere", [this] { m_screen->other.setFocus(); });
        row("hidden", [this] { recorder().hide(); });
    }

    void endsWithoutChange()
    {
        QFETCH(std::function<void()>, end);
        QSignalSpy active(m_shortcuts.get(), &KeyboardShortcuts::recorderActiveStatusDidChange);
        m_screen->click();
        end();
        QVERIFY(!recorder().isRecording());
        QCOMPARE(active, QList<QVariantList>({{true}, {false}}));
        press(optionCommandJ); // nobody listens
        verifyUnchanged();
    }

    void destroyedWhileRecording()
    {
        QSignalSpy active(m_shortcuts.get(), &KeyboardShortcuts::recorderActiveStatusDidChange);
        m_screen->click();
        m_screen.reset();
        QCOMPARE(active, QList<QVariantList>({{true}, {false}}));
    }

    void clears_data()
    {
        QTest::addColumn<std::optional<Key>>("key");
        QTest::newRow("button") << std::optional<Key>();
        QTest::newRow("Backspace") << std::optional(Key::deleteKey);
        QTest::newRow("Delete") << std::optional(Key::forwardDelete);
    }

    void clears()
    {
        QFETCH(std::optional<Key>, key);
        if (key) {
            m_screen->click();
            press(*key);
        } else {
            clearButton().click();
        }
        QVERIFY(!stored());
        QCOMPARE(m_changes, QList{std::optional<Shortcut>()});
        QVERIFY(!recorder().isRecording());
        QCOMPARE(recorder().text(), QString());
        QVERIFY(!clearButton().isVisible());
    }

    void keysWithModifiersAreCombinations_data()
    {
        QTest::addColumn<Key>("key");
        for (const Key key : {Key::escape, Key::tab, Key::deleteKey, Key::forwardDelete})
            QTest::addRow("%d", static_cast<int>(key)) << key;
    }

    void keysWithModifiersAreCombinations()
    {
        QFETCH(Key, key);
        m_screen->click();
        press(key, Qt::AltModifier);
        QCOMPARE(stored(), std::optional(Shortcut(key, Modifier::option)));
    }

    void programsOwnShortcutsWait()
    {
        QShortcut own(Qt::ALT | Qt::Key_J, &m_screen->window);
        const QSignalSpy fired(&own, &QShortcut::activated);
        QTest::keyClick(&m_screen->window, Qt::Key_J, Qt::AltModifier);
        QCOMPARE(fired.size(), 1);
        m_screen->click();
        QTest::keyClick(&m_screen->window, Qt::Key_J, Qt::AltModifier);
        QCOMPARE(fired.size(), 1);
    }

    void menuItemsAreRefused()
    {
        // Held by the system too: the menu comes first.
        m_events.reserved.insert(
            {optionCommandJ.carbonKeyCode(), optionCommandJ.carbonModifiers()});
        recorder().setMenuItems(
            [] { return QList<MenuItem>{{.title = u"<b>Jump"_s, .shortcut = optionCommandJ}}; });
        m_screen->click();
        press(optionCommandJ);
        QVERIFY(alert());
        QVERIFY(alert()->text().contains(u"<b>Jump"_s));
        QVERIFY(!alert()->forceButton());
        QCOMPARE(alert()->windowModality(), Qt::WindowModal);
        QVERIFY(recorder().isRecording());
        alert()->accept();
        verifyUnchanged();
        QVERIFY(recorder().isRecording()); // it goes on
        press(optionCommandF);
        QCOMPARE(m_changes.size(), 1);
    }

    void optionAlone_data()
    {
        QTest::addColumn<QOperatingSystemVersion>("system");
        QTest::addColumn<Modifiers>("modifiers");
        QTest::addColumn<bool>("isRefused");
        const auto mac = [](int major, int minor) {
            return QOperatingSystemVersion(QOperatingSystemVersion::MacOS, major, minor);
        };
        const Modifiers option(Modifier::option);
        QTest::newRow("14.6") << mac(14, 6) << option << false;
        QTest::newRow("15.0") << mac(15, 0) << option << true;
        QTest::newRow("15.1") << mac(15, 1) << option << true;
        QTest::newRow("15.2") << mac(15, 2) << option << false;
        QTest::newRow("with Shift") << mac(15, 0) << (option | Modifier::shift) << true;
        QTest::newRow("with Command") << mac(15, 0) << (option | Modifier::command) << false;
        QTest::newRow("Shift") << mac(15, 0) << Modifiers(Modifier::shift) << false;
        QTest::newRow("this one") << QOperatingSystemVersion(QOperatingSystemVersion::current())
                                  << option << false;
    }

    void optionAlone()
    {
        QFETCH(QOperatingSystemVersion, system);
        QFETCH(Modifiers, modifiers);
        const auto refusal = refusalOf(Shortcut(Key::j, modifiers), {.system = system});
        QTEST(refusal && refusal->reason == ShortcutRefusal::Reason::disallowed, "isRefused");
    }

    void reservedCanBeForced_data()
    {
        QTest::addColumn<bool>("forced");
        QTest::newRow("forced") << true;
        QTest::newRow("left") << false;
    }

    void reservedCanBeForced()
    {
        QFETCH(bool, forced);
        m_events.reserved.insert(
            {optionCommandJ.carbonKeyCode(), optionCommandJ.carbonModifiers()});
        m_screen->click();
        press(optionCommandJ);
        QVERIFY(alert());
        if (forced)
            alert()->forceButton()->click();
        else
            QTest::keyClick(alert(), Qt::Key_Escape);
        QVERIFY(!alert());
        QCOMPARE(stored(), std::optional(forced ? optionCommandJ : optionCommandF));
        QCOMPARE(recorder().isRecording(), !forced);
    }

    void withoutAWindowAlertsAreModal()
    {
        m_events.reserved.insert({static_cast<int>(Key::j), 0});
        RecorderCocoa alone(openVarno(), {}, *m_shortcuts);
        alone.show();
        alone.startRecording();
        press(Key::j);
        QVERIFY(alert());
        QCOMPARE(alert()->windowModality(), Qt::ApplicationModal);
        alert()->reject();
    }

    void goneWithItsAlert()
    {
        m_events.reserved.insert({static_cast<int>(Key::j), 0});
        m_screen->click();
        press(Key::j);
        QVERIFY(alert());
        m_screen.reset();
        QVERIFY(!alert());
    }

    void callbackMayDestroyIt()
    {
        auto* const doomed = new RecorderCocoa(openVarno(), {}, *m_shortcuts, &m_screen->window);
        QPointer<RecorderCocoa> second;
        second = new RecorderCocoa(
            openVarno(), [&second](const auto&) { delete second.data(); }, *m_shortcuts,
            &m_screen->window);
        delete doomed;
        second->show();
        second->startRecording();
        press(optionCommandJ);
        QVERIFY(!second);
        QCOMPARE(stored(), std::optional(optionCommandJ));
    }

    void followsOthersChanges()
    {
        m_shortcuts->setShortcut(optionCommandJ, openVarno());
        QCOMPARE(recorder().text(), u"⌥⌘J"_s);
        m_keyboard.setCharacters({{static_cast<int>(Key::j), u"о"_s}});
        QCOMPARE(recorder().text(), u"⌥⌘О"_s);
        m_keyboard.setCharacters({});
    }

    void realKeys()
    {
        if (QGuiApplication::platformName() != u"xcb")
            QSKIP("There is no X server: Xvfb and openbox are not installed");
        m_screen.reset();
        XcbConnection connection;
        XcbConnection otherProgram;
        XcbHotKeyEvents events(connection);
        XcbKeyboard keyboard(connection);
        m_shortcuts = std::make_unique<KeyboardShortcuts>(m_preferences, events, keyboard);
        int opened = 0;
        m_shortcuts->onKeyUp(openVarno(), [&opened] { ++opened; });
        m_screen = std::make_unique<Screen>(*m_shortcuts, openVarno(), noteChange());

        const xcb_window_t root = xcb_setup_roots_iterator(connection.setup()).data->root;
        constexpr quint8 keyJ = 44;
        constexpr quint8 keyF = 41;
        QVERIFY(otherProgram.check(xcb_grab_key_checked(otherProgram.get(), 0, root,
                                                        XCB_MOD_MASK_1 | XCB_MOD_MASK_4, keyJ,
                                                        XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
        const auto type = [&](quint8 key) {
            constexpr std::array<quint8, 2> modifiers = {64, 133}; // Alt, Super
            const auto fake = [&](quint8 kind, quint8 code) {
                QVERIFY(otherProgram.check(xcb_test_fake_input_checked(
                    otherProgram.get(), kind, code, XCB_CURRENT_TIME, root, 0, 0, 0)));
            };
            for (const quint8 modifier : modifiers)
                fake(XCB_KEY_PRESS, modifier);
            fake(XCB_KEY_PRESS, key);
            fake(XCB_KEY_RELEASE, key);
            for (const quint8 modifier : modifiers)
                fake(XCB_KEY_RELEASE, modifier);
        };

        m_screen->click();
        type(keyF); // its own: reaches the recorder and does not fire
        QTRY_COMPARE(m_changes, QList{std::optional(optionCommandF)});
        QCOMPARE(opened, 0);
        QVERIFY(!recorder().isRecording());
        type(keyF);
        QTRY_COMPARE(opened, 1);

        QTRY_VERIFY(m_screen->window.isActiveWindow());
        m_screen->click();
        type(keyJ); // another program's: reaches the recorder all the same
        QTRY_VERIFY(alert());
        alert()->forceButton()->click();
        QCOMPARE(stored(), std::optional(optionCommandJ));
        QVERIFY(!m_shortcuts->isEnabled(openVarno()));
        m_screen.reset();
        m_shortcuts.reset();
    }
};

VARNO_TEST(QApplication, RecorderTest)
#include "RecorderTest.moc"
