#include "platform/fake/FakeHotKeyEvents.h"
#include "platform/fake/FakeKeyboard.h"
#include "platform/fake/FakePreferencesStore.h"
#include "shortcuts/ShortcutEvents.h"
#include "tests/Test.h"

#include <iostream>
#include <sstream>

using Name = KeyboardShortcuts::Name;

namespace {

const Shortcut optionCommandF(Key::f, Modifier::option | Modifier::command);
const Shortcut controlJ(Key::j, Modifier::control);
constexpr quint32 pressed = 5;
constexpr quint32 released = 6;

/// What `action` writes to the console.
QString written(const std::function<void()>& action)
{
    std::ostringstream text;
    std::streambuf* const before = std::cerr.rdbuf(text.rdbuf());
    action();
    std::cerr.rdbuf(before);
    return QString::fromStdString(text.str());
}

} // namespace

class HotKeyTest : public QObject {
    Q_OBJECT

private:
    FakePreferencesStore m_preferences;
    FakeKeyboard m_keyboard;
    FakeHotKeyEvents m_events;
    std::unique_ptr<KeyboardShortcuts> m_shortcuts;
    QStringList m_calls;

    Name open() { return Name(u"open"_s, optionCommandF, *m_shortcuts); }
    Name other() { return Name(u"other"_s, controlJ, *m_shortcuts); }

    KeyboardShortcuts::Action calls(const QString& text)
    {
        return [this, text] { m_calls << text; };
    }

    QStringList takeCalls() { return std::exchange(m_calls, {}); }

    /// Answers what the handler answers for the registered combination.
    std::optional<int> send(const Shortcut& shortcut, quint32 kind = released)
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
        QVERIFY(!m_events.bindingHandler);
        QVERIFY(!m_events.types);
        m_events.installations = 0;
    }

    void pressesAndReleases()
    {
        const Name name = open();
        QVERIFY(m_events.registered.empty());
        m_shortcuts->onKeyDown(name, calls(u"down"_s));
        m_shortcuts->onKeyUp(name, calls(u"up"_s));
        m_shortcuts->onKeyUp(other(), calls(u"other"_s));
        QCOMPARE(m_events.registered.size(), 2U);
        QCOMPARE(m_events.installations, 1);
        for (const auto& [shortcut, kind, call] :
             Rows<Shortcut, quint32, QString>{{optionCommandF, pressed, u"down"_s},
                                              {optionCommandF, released, u"up"_s},
                                              {controlJ, released, u"other"_s}}) {
            QCOMPARE(send(shortcut, kind), std::optional(0));
            QCOMPARE(takeCalls(), QStringList{call});
        }
        QCOMPARE(m_shortcuts->lastEventTime(), 4711U);
    }

    void changesAreLiveAtOnce()
    {
        const Name name = open();
        m_shortcuts->onKeyUp(name, calls(u"up"_s));
        m_shortcuts->setShortcut(controlJ, name);
        QVERIFY(!send(optionCommandF));
        QCOMPARE(send(controlJ), std::optional(0));
        QCOMPARE(takeCalls(), QStringList{u"up"_s});
        m_shortcuts->setShortcut({}, name);
        QVERIFY(m_events.registered.empty());
        m_shortcuts->resetAll();
        QCOMPARE(send(optionCommandF), std::optional(0));
        m_shortcuts->disable({name});
        QVERIFY(!m_shortcuts->isEnabled(name));
        QVERIFY(m_events.registered.empty());
        m_shortcuts->enable({name});
        QVERIFY(m_shortcuts->isEnabled(name));
        QVERIFY(send(optionCommandF));
    }

    void sharedShortcut()
    {
        const Name one(u"one"_s, controlJ, *m_shortcuts);
        m_shortcuts->onKeyUp(one, calls(u"one"_s));
        m_shortcuts->onKeyUp(other(), calls(u"other"_s));
        QCOMPARE(m_events.registered.size(), 1U);
        send(controlJ);
        m_calls.sort();
        QCOMPARE(takeCalls(), QStringList({u"one"_s, u"other"_s}));
        m_shortcuts->removeHandler(one);
        send(controlJ);
        QCOMPARE(takeCalls(), QStringList{u"other"_s});
        m_shortcuts->removeAllHandlers();
        QVERIFY(m_events.registered.empty());
    }

    void pausing()
    {
        Q_EMIT m_shortcuts->recorderActiveStatusDidChange(true); // before the first handler
        m_shortcuts->onKeyUp(open(), calls(u"up"_s));
        QVERIFY(!send(optionCommandF));
        Q_EMIT m_shortcuts->recorderActiveStatusDidChange(false);
        QVERIFY(send(optionCommandF));
        Q_EMIT m_shortcuts->recorderActiveStatusDidChange(true);
        m_shortcuts->setEnabled(false);
        Q_EMIT m_shortcuts->recorderActiveStatusDidChange(false);
        QVERIFY(!send(optionCommandF));
        m_shortcuts->setEnabled(true);
        QVERIFY(send(optionCommandF));
        QCOMPARE(takeCalls(), QStringList({u"up"_s, u"up"_s}));
    }

    void refusedAtOnceOrLater()
    {
        const Name name = open();
        const auto verifyRefused = [&](const QString& console) {
            QCOMPARE(console, u"Error registering hotkey ⌥⌘F\n"_s);
            QVERIFY(!m_shortcuts->isEnabled(name));
            QVERIFY(m_shortcuts->isRefused(name));
            m_events.reserved.clear();
            m_shortcuts->enable({name});
            QVERIFY(send(optionCommandF));
            QVERIFY(!m_shortcuts->isRefused(name));
            QCOMPARE(takeCalls(), QStringList{u"up"_s});
        };
        m_events.reserved.insert({3, 2304});
        verifyRefused(written([&] { m_shortcuts->onKeyUp(name, calls(u"up"_s)); }));
        m_shortcuts->onKeyUp(other(), calls(u"other"_s));
        verifyRefused(written(
            [&] { m_events.bind(m_events.registered.begin()->first, {.isBound = false}); }));
        m_events.bind(4711, {.isBound = false}); // nobody's
        QVERIFY(send(controlJ));
    }

    void showsWhatTheSystemHasBound()
    {
        const Name name = open();
        m_events.asksUser = true;
        m_shortcuts->onKeyUp(name, {});
        QVERIFY(!m_shortcuts->works(name) && !m_shortcuts->isRefused(name));
        m_events.bind(m_events.registered.begin()->first, {.trigger = u"F12"_s});
        QVERIFY(m_shortcuts->works(name));
        QCOMPARE(m_shortcuts->shownShortcut(name), u"F12"_s);
        m_shortcuts->setShortcut(optionCommandF, name); // the user's new wish
        QCOMPARE(m_shortcuts->shownShortcut(name), u"⌥⌘F"_s);
    }

    void eventsEndWithTheirHandle()
    {
        std::unique_ptr<ShortcutEvents> events = m_shortcuts->events(open());
        connect(events.get(), &ShortcutEvents::keyDown, this, calls(u"down"_s));
        connect(events.get(), &ShortcutEvents::keyUp, this, calls(u"up"_s));
        send(optionCommandF, pressed);
        QCOMPARE(m_calls, QStringList{u"down"_s});
        send(optionCommandF);
        QCOMPARE(m_calls, QStringList({u"down"_s, u"up"_s}));
        events.reset();
        QVERIFY(m_events.registered.empty());
        events = m_shortcuts->events(open());
        m_shortcuts.reset(); // first
    }

    void actionsMayEndWhatTheyAreCalledFrom()
    {
        const Name name = open();
        m_shortcuts->onKeyUp(name, [this, name] {
            m_calls << u"first"_s;
            m_shortcuts->removeHandler(name);
        });
        m_shortcuts->onKeyUp(name, calls(u"removed"_s));
        QCOMPARE(send(optionCommandF), std::optional(0));
        QCOMPARE(takeCalls(), QStringList{u"first"_s});

        m_shortcuts->onKeyUp(name, [this] { m_shortcuts.reset(); });
        m_shortcuts->onKeyUp(name, calls(u"destroyed"_s));
        QCOMPARE(send(optionCommandF), std::optional(0));
        QVERIFY(m_calls.isEmpty());
    }
};

VARNO_TEST(QCoreApplication, HotKeyTest)
#include "HotKeyTest.moc"
