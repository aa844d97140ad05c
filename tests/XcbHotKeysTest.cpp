#include "platform/linux/XcbConnection.h"
#include "platform/linux/XcbHotKeyEvents.h"
#include "platform/linux/XcbKeyboard.h"
#include "shortcuts/Shortcut.h"

#include <QAbstractEventDispatcher>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

#include <xcb/xtest.h>

#include <algorithm>
#include <array>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

// X key codes of a PC's keyboard.
constexpr quint8 keyF = 41;
constexpr quint8 keyY = 29;
constexpr quint8 keyAlt = 64;
constexpr quint8 keySuper = 133;
constexpr quint8 keyCapsLock = 66;
constexpr quint8 keyNumLock = 77;
constexpr quint8 keyShift = 50;

const Shortcut optionCommandF(Key::f, Modifier::option | Modifier::command);
constexpr quint32 pressed = 5;
constexpr quint32 released = 6;

/// Another program: a window that has the focus, somebody at the keyboard, and grabs of its own.
class OtherClient {
public:
    OtherClient()
        : m_screen(xcb_setup_roots_iterator(m_connection.setup()).data)
        , m_window(xcb_generate_id(m_connection.get()))
    {
        const quint32 events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_EXPOSURE;
        const std::array<quint32, 2> values = {1, events};
        xcb_create_window(m_connection.get(), XCB_COPY_FROM_PARENT, m_window, m_screen->root, 0, 0,
                          100, 100, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
        finish(xcb_map_window_checked(m_connection.get(), m_window));
        finish(xcb_set_input_focus_checked(m_connection.get(), XCB_INPUT_FOCUS_POINTER_ROOT,
                                           m_window, XCB_CURRENT_TIME));
    }

    void press(quint8 key) { fake(XCB_KEY_PRESS, key); }
    void lift(quint8 key) { fake(XCB_KEY_RELEASE, key); }
    void type(quint8 key)
    {
        press(key);
        lift(key);
    }

    bool grab(quint8 key, quint16 modifiers)
    {
        return m_connection.check(xcb_grab_key_checked(m_connection.get(), 0, m_screen->root,
                                                       modifiers, key, XCB_GRAB_MODE_ASYNC,
                                                       XCB_GRAB_MODE_ASYNC));
    }
    void release(quint8 key, quint16 modifiers)
    {
        finish(xcb_ungrab_key_checked(m_connection.get(), key, m_screen->root, modifiers));
    }

    /// Its own connection: what it says of keys is what its window got.
    XcbConnection& connection() { return m_connection; }

private:
    void fake(quint8 type, quint8 key)
    {
        finish(xcb_test_fake_input_checked(m_connection.get(), type, key, XCB_CURRENT_TIME,
                                           m_screen->root, 0, 0, 0));
    }
    void finish(xcb_void_cookie_t request) { QVERIFY(m_connection.check(request)); }

    XcbConnection m_connection;
    xcb_screen_t* m_screen;
    xcb_window_t m_window;
};

} // namespace

class XcbHotKeysTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<OtherClient> m_other;
    std::unique_ptr<XcbConnection> m_connection;
    std::unique_ptr<XcbHotKeyEvents> m_events;
    QList<quint32> m_kinds;

    std::optional<HotKeyEvents::Reference> add(const Shortcut& shortcut, quint32 id = 1)
    {
        return m_events->registerHotKey(shortcut.carbonKeyCode(), shortcut.carbonModifiers(),
                                        {.signature = 1, .id = id});
    }

    bool isReserved(const Shortcut& shortcut)
    {
        return m_events->isReserved(shortcut.carbonKeyCode(), shortcut.carbonModifiers());
    }

    void pressModifiers()
    {
        m_other->press(keyAlt);
        m_other->press(keySuper);
    }
    void liftModifiers()
    {
        m_other->lift(keySuper);
        m_other->lift(keyAlt);
    }
    void typeOptionCommandF()
    {
        pressModifiers();
        m_other->type(keyF);
        liftModifiers();
    }

    static void setLayout(const QString& layout)
    {
        QCOMPARE(QProcess::execute(u"setxkbmap"_s, {layout}), 0);
    }

    void listen()
    {
        m_events->installHandler([this](const HotKeyEvent& event) {
            m_kinds << event.kind;
            return 0;
        });
        m_events->addEventTypes(HotKeyEvents::hotKeyEvents);
    }

private slots:
    void initTestCase()
    {
        if (qEnvironmentVariableIsEmpty("DISPLAY"))
            QSKIP("There is no X server: Xvfb and openbox are not installed");
    }

    void init()
    {
        m_kinds.clear();
        m_other = std::make_unique<OtherClient>();
        m_connection = std::make_unique<XcbConnection>();
        m_events = std::make_unique<XcbHotKeyEvents>(*m_connection);
        listen();
    }

    void cleanup()
    {
        m_events.reset();
        m_connection.reset();
        m_other.reset();
    }

    void pressAndRelease_data()
    {
        QTest::addColumn<QList<int>>("locks");
        QTest::newRow("no lock") << QList<int>{};
        QTest::newRow("caps") << QList<int>{keyCapsLock};
        QTest::newRow("num") << QList<int>{keyNumLock};
        QTest::newRow("caps and num") << QList<int>{keyCapsLock, keyNumLock};
    }

    void pressAndRelease()
    {
        QFETCH(QList<int>, locks);
        QVERIFY(add(optionCommandF));
        for (const int lock : locks)
            m_other->type(static_cast<quint8>(lock));
        pressModifiers();
        m_other->press(keyF);
        QTRY_COMPARE(m_kinds, QList<quint32>{pressed});
        liftModifiers(); // first
        m_other->lift(keyF);
        QTRY_COMPARE(m_kinds, QList<quint32>({pressed, released}));
        for (const int lock : locks)
            m_other->type(static_cast<quint8>(lock));
    }

    void carriesIdentityAndTime()
    {
        HotKeyEvent last;
        m_events->installHandler([&last](const HotKeyEvent& event) {
            last = event;
            return 0;
        });
        QVERIFY(add(optionCommandF, 17));
        typeOptionCommandF();
        QTRY_COMPARE(last.kind, released);
        QCOMPARE(last.identity.id, 17U);
        QVERIFY(last.time != 0);
    }

    void holdingFiresOnce()
    {
        QVERIFY(add(optionCommandF));
        const QSignalSpy presses(m_connection.get(), &XcbConnection::keyPressed);
        pressModifiers();
        m_other->press(keyF);
        QTRY_VERIFY(presses.size() >= 4); // it repeats
        QCOMPARE(m_kinds, QList<quint32>{pressed});
        m_other->lift(keyF);
        liftModifiers();
        QTRY_COMPARE(m_kinds, QList<quint32>({pressed, released}));
    }

    void otherModifiersAreNotOurs()
    {
        QVERIFY(add(optionCommandF));
        const QSignalSpy others(&m_other->connection(), &XcbConnection::keyPressed);
        m_other->press(keyShift);
        typeOptionCommandF();
        m_other->lift(keyShift);
        QTRY_COMPARE(others.size(), 4);
        typeOptionCommandF();
        QTRY_COMPARE(m_kinds, QList<quint32>({pressed, released}));
    }

    void conflicts_data()
    {
        QTest::addColumn<int>("state");
        QTest::newRow("the combination") << (XCB_MOD_MASK_1 | XCB_MOD_MASK_4);
        QTest::newRow("one of its variants")
            << (XCB_MOD_MASK_1 | XCB_MOD_MASK_4 | XCB_MOD_MASK_2 | XCB_MOD_MASK_LOCK);
    }

    void conflicts()
    {
        QFETCH(int, state);
        const auto modifiers = static_cast<quint16>(state);
        QVERIFY(m_other->grab(keyF, modifiers));
        QVERIFY(isReserved(optionCommandF));
        QVERIFY(!add(optionCommandF));
        m_other->release(keyF, modifiers);
        const auto plain = static_cast<quint16>(XCB_MOD_MASK_1 | XCB_MOD_MASK_4 | XCB_MOD_MASK_2);
        QTRY_VERIFY2(m_other->grab(keyF, plain), "a part of what was refused is still held");
        m_other->release(keyF, plain);
        QVERIFY(!isReserved(optionCommandF));
        QVERIFY(add(optionCommandF));
        QVERIFY(!isReserved(optionCommandF)); // held by ourselves, and still so
        QVERIFY(!m_other->grab(keyF, modifiers));
    }

    void refusals_data()
    {
        QTest::addColumn<Shortcut>("shortcut");
        QTest::newRow("no key") << Shortcut(0x7F, 0x100);
        QTest::newRow("negative") << Shortcut(-8, 0x100);
        QTest::newRow("no modifier of X") << Shortcut(Key::f, Modifier::function);
    }

    void refusals()
    {
        QFETCH(Shortcut, shortcut);
        QVERIFY(!add(shortcut));
    }

    void pausedKeysGoToTheFocus()
    {
        const QSignalSpy others(&m_other->connection(), &XcbConnection::keyPressed);
        QVERIFY(add(optionCommandF));
        m_events->removeEventTypes(HotKeyEvents::hotKeyEvents);
        typeOptionCommandF();
        QTRY_COMPARE(others.size(), 3);
        QVERIFY(m_kinds.isEmpty());
        m_events->addEventTypes(HotKeyEvents::hotKeyEvents);
        typeOptionCommandF();
        QTRY_COMPARE(m_kinds, QList<quint32>({pressed, released}));
    }

    void whatIsGivenBackIsFree()
    {
        const auto modifiers = static_cast<quint16>(XCB_MOD_MASK_1 | XCB_MOD_MASK_4);
        const auto reference = add(optionCommandF);
        QVERIFY(!m_other->grab(keyF, modifiers));
        m_events->unregisterHotKey(reference.value());
        QTRY_VERIFY(m_other->grab(keyF, modifiers));
        m_other->release(keyF, modifiers);
        QVERIFY(add(optionCommandF));
        m_events.reset();
        QTRY_VERIFY(m_other->grab(keyF, modifiers));
    }

    void anotherLayout()
    {
        const XcbKeyboard keyboard(*m_connection);
        QCOMPARE(keyboard.character(static_cast<int>(Key::y)), u"y"_s);
        const Shortcut commandY(Key::y, Modifier::command);
        QVERIFY(add(commandY));
        QSignalSpy changes(m_connection.get(), &XcbConnection::keymapChanged);
        const std::array<std::pair<QString, QString>, 3> layouts = {
            {{u"de"_s, u"z"_s}, {u"ru"_s, u"н"_s}, {u"us"_s, u"y"_s}}};
        for (const auto& [layout, character] : layouts) {
            setLayout(layout);
            QTRY_VERIFY(!changes.isEmpty());
            changes.clear();
            m_kinds.clear();
            m_other->press(keySuper);
            m_other->type(keyY);
            m_other->lift(keySuper);
            QTRY_COMPARE(m_kinds, QList<quint32>({pressed, released}));
            QCOMPARE(keyboard.character(static_cast<int>(Key::y)), character);
        }
    }

    void handlerMayDestroyAll()
    {
        QVERIFY(add(optionCommandF));
        m_events->installHandler([this](const HotKeyEvent&) {
            m_events.reset();
            m_connection.reset();
            return 0;
        });
        typeOptionCommandF();
        QTRY_VERIFY(!m_connection);
    }

    void lostServer()
    {
        QProcess server;
        server.start(u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-nolisten"_s, u"tcp"_s});
        QVERIFY(server.waitForReadyRead());
        const QByteArray before = qgetenv("DISPLAY");
        qputenv("DISPLAY", ":" + server.readAllStandardOutput().trimmed());
        m_connection = nullptr;
        XcbConnection connection;
        qputenv("DISPLAY", before);
        m_events = std::make_unique<XcbHotKeyEvents>(connection);
        listen();
        const auto reference = add(optionCommandF);
        QVERIFY(reference);
        server.kill();
        QVERIFY(server.waitForFinished());
        m_events->unregisterHotKey(*reference);
        QTRY_VERIFY(!connection.isOpen());
        QVERIFY(!add(optionCommandF));
        QVERIFY(!isReserved(optionCommandF));
        QVERIFY(XcbKeyboard(connection).character(0).isEmpty());
        const QSignalSpy turns(QAbstractEventDispatcher::instance(),
                               &QAbstractEventDispatcher::awake);
        QTest::qWait(200);
        QVERIFY2(turns.size() < 100, "it spins");
        m_events.reset();
    }

    void noServer()
    {
        const QByteArray before = qgetenv("DISPLAY");
        qunsetenv("DISPLAY");
        XcbConnection connection;
        qputenv("DISPLAY", before);
        XcbHotKeyEvents events(connection);
        events.addEventTypes(HotKeyEvents::hotKeyEvents);
        QVERIFY(!events.registerHotKey(3, 2304, {}));
        QVERIFY(!events.isReserved(3, 2304));
        const XcbKeyboard keyboard(connection);
        QVERIFY(keyboard.character(3).isEmpty());
        QCOMPARE(keyboard.carbonKeyCode(keyF), std::optional(3));
    }
};

QTEST_GUILESS_MAIN(XcbHotKeysTest)
#include "XcbHotKeysTest.moc"
