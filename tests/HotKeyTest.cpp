#include "platform/fake/FakeHotKeyEvents.h"
#include "platform/fake/FakeKeyboard.h"
#include "platform/fake/FakePreferencesStore.h"
#include "shortcuts/ShortcutEvents.h"

#include <QSignalSpy>
#include <QTest>

#include <iostream>
#include <sstream>

using namespace varno;
using namespace Qt::StringLiterals;
using Name = KeyboardShortcuts::Name;

namespace {

const Shortcut optionCommandF(Key::f, Modifier::option | Modifier::command);
const Shortcut controlJ(Key::j, Modifier::control);
constexpr quint32 pressed = 5;
constexpr quint32 released = 6;

/// What is written to the console while it lives.
class Console {
public:
    Console()
        : m_before(std::cerr.rdbuf(m_text.rdbuf()))
    {
    }
    ~Console() { std::cerr.rdbuf(m_before); }
    Q_DISABLE_COPY_MOVE(Console)

    [[nodiscard]] QString text() const { return QString::fromStdString(m_text.str()); }

private:
    std::ostringstream m_text;
    std::streambuf* m_before;
};

} // namespace

class HotKeyTest : public QObject {
    Q_OBJECT

private:
    FakePreferencesStore m_preferences;
    FakeKeyboard m_keyboard;
    FakeHotKeyEvents m_events;
    std::unique_ptr<KeyboardShortcuts> m_shortcuts;
    QStringList m_calls;

    Name name(const QString& rawValue, const Shortcut& shortcut)
    {
        return Name(rawValue, shortcut, *m_shortcuts);
    }

    KeyboardShortcuts::Action calls(const QString& text)
    {
        return [this, text] { m_calls << text; };
    }

    QStringList takeCalls() { return std::exchange(m_calls, {}); }

    /// Answers what the handler answers for the registered combination.
    std::optional<int> send(const Shortcut& shortcut, quint32 kind)
    {
        for (const auto& [reference, registration] : std::map(m_events.registered))
            if (registration.combination ==
                std::pair(shortcut.carbonKeyCode(), shortcut.carbonModifiers()))
                return m_events.send(
                    {.kind = kind, .identity = registration.identity, .time = 4711});
        return std::nullopt;
    }

private Q_SLOTS:
    void init()
    {
        m_preferences.values.clear();
        m_events.reserved.clear();
        m_calls.clear();
        m_shortcuts = std::make_unique<KeyboardShortcuts>(m_preferences, m_events, m_keyboard);
    }

    void cleanup()
    {
        m_shortcuts.reset();
        QVERIFY(m_events.registered.empty());
        QVERIFY(!m_events.handler);
        QVERIFY(!m_events.refusalHandler);
        QVERIFY(!m_events.types);
        m_events.installations = 0;
    }

    void pressesAndReleases()
    {
        const Name open = name(u"open"_s, optionCommandF);
        const Name other = name(u"other"_s, controlJ);
        QVERIFY(m_events.registered.empty());
        m_shortcuts->onKeyDown(open, calls(u"down"_s));
        m_shortcuts->onKeyUp(open, calls(u"up"_s));
        m_shortcuts->onKeyUp(other, calls(u"other"_s));
        QCOMPARE(m_events.registered.size(), 2U);
        QCOMPARE(m_events.installations, 1);
        QCOMPARE(send(optionCommandF, pressed), std::optional(0));
        QCOMPARE(takeCalls(), QStringList{u"down"_s});
        QCOMPARE(send(optionCommandF, released), std::optional(0));
        QCOMPARE(takeCalls(), QStringList{u"up"_s});
        QCOMPARE(m_shortcuts->lastEventTime(), 4711U);
        QCOMPARE(send(controlJ, released), std::optional(0));
        QCOMPARE(takeCalls(), QStringList{u"other"_s});
    }

    void eventsOfOthers_data()
    {
        QTest::addColumn<HotKeyEvent>("event");
        QTest::addColumn<int>("answer");
        const HotKeyIdentity ours{.signature = 0x53534B53, .id = 1};
        QTest::newRow("unreadable")
            << HotKeyEvent{.kind = pressed, .parameterStatus = -9870, .identity = ours} << -9870;
        QTest::newRow("signature")
            << HotKeyEvent{.kind = pressed, .identity = {.signature = 0x53534B54, .id = 1}}
            << -9874;
        QTest::newRow("id") << HotKeyEvent{.kind = pressed,
                                           .identity = {.signature = 0x53534B53, .id = 2}}
                            << -9874;
        QTest::newRow("kind") << HotKeyEvent{.kind = 7, .identity = ours} << -9874;
        QTest::newRow("kind of a key") << HotKeyEvent{.kind = 1, .identity = ours} << -9874;
    }

    void eventsOfOthers()
    {
        QFETCH(HotKeyEvent, event);
        m_shortcuts->onKeyDown(name(u"open"_s, optionCommandF), calls(u"down"_s));
        QTEST(m_events.send(event).value_or(1), "answer");
        QVERIFY(m_calls.isEmpty());
    }

    void keyboardEventsOfOldSystems_data()
    {
        QTest::addColumn<QOperatingSystemVersion>("system");
        QTest::addColumn<bool>("listens");
        QTest::newRow("13.6") << QOperatingSystemVersion(QOperatingSystemVersion::MacOS, 13, 6)
                              << true;
        QTest::newRow("14.0") << QOperatingSystemVersion(QOperatingSystemVersion::MacOS, 14, 0)
                              << false;
        QTest::newRow("this one") << QOperatingSystemVersion(QOperatingSystemVersion::current())
                                  << false;
    }

    void keyboardEventsOfOldSystems()
    {
        QFETCH(QOperatingSystemVersion, system);
        QFETCH(bool, listens);
        HotKeyCenter center(m_events, system);
        QVERIFY(center.add(controlJ, {.keyDown = calls(u"down"_s), .keyUp = calls(u"up"_s)}));
        HotKeyEvent event{.eventClass = HotKeyEventClass::keyboard,
                          .kind = 1,
                          .carbonKeyCode = controlJ.carbonKeyCode(),
                          .carbonModifiers = controlJ.carbonModifiers()};
        QCOMPARE(m_events.send(event), listens ? std::optional(0) : std::nullopt);
        if (!listens)
            return;
        event.kind = 3;
        QCOMPARE(m_events.send(event), std::optional(0));
        QCOMPARE(takeCalls(), QStringList({u"down"_s, u"up"_s}));
        event.kind = 2;
        QCOMPARE(m_events.send(event), std::optional(-9874));
        event.kind = 1;
        event.carbonModifiers = 0;
        QCOMPARE(m_events.send(event), std::optional(-9874));
        QVERIFY(m_calls.isEmpty());
    }

    void changedShortcutIsLiveAtOnce()
    {
        const Name open = name(u"open"_s, optionCommandF);
        m_shortcuts->onKeyUp(open, calls(u"up"_s));
        m_shortcuts->setShortcut(controlJ, open);
        QVERIFY(!send(optionCommandF, released));
        QCOMPARE(send(controlJ, released), std::optional(0));
        QCOMPARE(takeCalls(), QStringList{u"up"_s});
        m_shortcuts->setShortcut({}, open);
        QVERIFY(m_events.registered.empty());
        m_shortcuts->resetAll();
        QCOMPARE(send(optionCommandF, released), std::optional(0));
    }

    void sharedShortcut()
    {
        const Name one = name(u"one"_s, controlJ);
        const Name two = name(u"two"_s, controlJ);
        m_shortcuts->onKeyUp(one, calls(u"one"_s));
        m_shortcuts->onKeyUp(two, calls(u"two"_s));
        QCOMPARE(m_events.registered.size(), 1U);
        send(controlJ, released);
        QStringList both = takeCalls();
        both.sort();
        QCOMPARE(both, QStringList({u"one"_s, u"two"_s}));
        m_shortcuts->removeHandler(one);
        send(controlJ, released);
        QCOMPARE(takeCalls(), QStringList{u"two"_s});
        m_shortcuts->removeAllHandlers();
        QVERIFY(m_events.registered.empty());
    }

    void enableAndDisable()
    {
        const Name open = name(u"open"_s, optionCommandF);
        m_shortcuts->onKeyUp(open, calls(u"up"_s));
        QVERIFY(m_shortcuts->isEnabled(open));
        m_shortcuts->disable({open});
        QVERIFY(!m_shortcuts->isEnabled(open));
        QVERIFY(m_events.registered.empty());
        QCOMPARE(m_shortcuts->getShortcut(open), std::optional(optionCommandF));
        m_shortcuts->enable({open});
        QVERIFY(m_shortcuts->isEnabled(open));
        send(optionCommandF, released);
        QCOMPARE(takeCalls(), QStringList{u"up"_s});
    }

    void pausing()
    {
        m_shortcuts->onKeyUp(name(u"open"_s, optionCommandF), calls(u"up"_s));
        const auto isHeard = [this] { return send(optionCommandF, released).has_value(); };
        Q_EMIT m_shortcuts->recorderActiveStatusDidChange(true);
        m_shortcuts->onKeyUp(name(u"other"_s, controlJ), calls(u"other"_s));
        QCOMPARE(m_events.registered.size(), 2U);
        QVERIFY(!isHeard());
        m_shortcuts->setEnabled(false);
        Q_EMIT m_shortcuts->recorderActiveStatusDidChange(false);
        QVERIFY(!isHeard());
        m_shortcuts->setEnabled(true);
        QVERIFY(isHeard());
        QCOMPARE(takeCalls(), QStringList{u"up"_s});
    }

    void firstHandlerWhilePaused()
    {
        Q_EMIT m_shortcuts->recorderActiveStatusDidChange(true);
        m_shortcuts->onKeyUp(name(u"open"_s, optionCommandF), calls(u"up"_s));
        QVERIFY(!send(optionCommandF, released));
        Q_EMIT m_shortcuts->recorderActiveStatusDidChange(false);
        QCOMPARE(send(optionCommandF, released), std::optional(0));
    }

    void refusedRegistration()
    {
        m_events.reserved.insert({3, 2304});
        const Name open = name(u"open"_s, optionCommandF);
        const Console console;
        m_shortcuts->onKeyUp(open, calls(u"up"_s));
        QCOMPARE(console.text(), u"Error registering hotkey ⌥⌘F\n"_s);
        QVERIFY(!m_shortcuts->isEnabled(open));
        QCOMPARE(m_shortcuts->getShortcut(open), std::optional(optionCommandF));
        m_events.reserved.clear();
        m_shortcuts->enable({open});
        QVERIFY(m_shortcuts->isEnabled(open));
    }

    void laterRefusal()
    {
        const Name open = name(u"open"_s, optionCommandF);
        m_shortcuts->onKeyUp(open, calls(u"up"_s));
        m_shortcuts->onKeyUp(name(u"other"_s, controlJ), calls(u"other"_s));
        QVERIFY(m_shortcuts->isEnabled(open));
        const Console console;
        m_events.refuse(m_events.registered.begin()->first);
        QCOMPARE(console.text(), u"Error registering hotkey ⌥⌘F\n"_s);
        QVERIFY(!m_shortcuts->isEnabled(open));
        QCOMPARE(m_shortcuts->getShortcut(open), std::optional(optionCommandF));
        m_events.refuse(4711); // nobody's
        QVERIFY(send(controlJ, released));
        m_shortcuts->enable({open});
        QVERIFY(m_shortcuts->isEnabled(open));
        QVERIFY(send(optionCommandF, released));
        QCOMPARE(takeCalls(), QStringList({u"other"_s, u"up"_s}));
    }

    void eventsEndWithTheirHandle()
    {
        const Name open = name(u"open"_s, optionCommandF);
        std::unique_ptr<ShortcutEvents> events = m_shortcuts->events(open);
        QSignalSpy down(events.get(), &ShortcutEvents::keyDown);
        QSignalSpy up(events.get(), &ShortcutEvents::keyUp);
        send(optionCommandF, pressed);
        QCOMPARE(down.size(), 1);
        QCOMPARE(up.size(), 0);
        send(optionCommandF, released);
        QCOMPARE(up.size(), 1);
        events.reset();
        QVERIFY(m_events.registered.empty());
        events = m_shortcuts->events(open);
        m_shortcuts.reset();
        events.reset();
    }

    void actionsMayEndWhatTheyAreCalledFrom()
    {
        const Name open = name(u"open"_s, optionCommandF);
        std::unique_ptr<ShortcutEvents> events = m_shortcuts->events(open);
        connect(events.get(), &ShortcutEvents::keyUp, this, calls(u"stream"_s));
        m_shortcuts->onKeyUp(open, [&] {
            m_calls << u"first"_s;
            events.reset();
        });
        m_shortcuts->onKeyUp(open, [this, open] {
            m_calls << u"second"_s;
            m_shortcuts->removeHandler(open);
        });
        m_shortcuts->onKeyUp(open, calls(u"removed"_s));
        QCOMPARE(send(optionCommandF, released), std::optional(0));
        QCOMPARE(takeCalls(), QStringList({u"first"_s, u"second"_s}));

        m_shortcuts->onKeyUp(open, [this] { m_shortcuts.reset(); });
        m_shortcuts->onKeyUp(open, calls(u"destroyed"_s));
        QCOMPARE(send(optionCommandF, released), std::optional(0));
        QVERIFY(m_calls.isEmpty());
    }
};

VARNO_TEST(QCoreApplication, HotKeyTest)
#include "HotKeyTest.moc"
