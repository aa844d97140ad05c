#include "platform/linux/XcbConnection.h"
#include "platform/linux/XcbHotKeyEvents.h"
#include "platform/linux/XcbKeyboard.h"
#include "shortcuts/Shortcut.h"
#include "tests/TestMain.h"
#include "tests/XDesktop.h"

#include <QAbstractEventDispatcher>
#include <QProcess>
#include <QSignalSpy>

#include <algorithm>
#include <array>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

// X key codes of a PC's keyboard.
constexpr quint8 keyY = 29;
constexpr quint8 keyShift = 50;

const Shortcut optionCommandF(Key::f, Modifier::option | Modifier::command);
constexpr quint32 pressed = 5;
constexpr quint32 released = 6;

/// Another program: a window that has the focus, somebody at the keyboard, and grabs of its own.
class OtherClient : public XDesktop {
public:
    OtherClient()
    {
        const xcb_window_t window = openWindow();
        const quint32 events = XCB_EVENT_MASK_KEY_PRESS;
        QVERIFY(m_connection.check(xcb_change_window_attributes_checked(
            m_connection.get(), window, XCB_CW_EVENT_MASK, &events)));
        QTRY_VERIFY(isFree(pcKey::f)); // once those of the test before are gone
    }

    /// Whether nobody has it, with any modifiers.
    bool isFree(quint8 key)
    {
        const bool granted = grab(key, XCB_MOD_MASK_ANY);
        if (granted)
            release(key, XCB_MOD_MASK_ANY);
        return granted;
    }
    bool grab(quint8 key, quint16 modifiers)
    {
        return m_connection.check(xcb_grab_key_checked(m_connection.get(), 0, root(), modifiers,
                                                       key, XCB_GRAB_MODE_ASYNC,
                                                       XCB_GRAB_MODE_ASYNC));
    }
    void release(quint8 key, quint16 modifiers)
    {
        QVERIFY(
            m_connection.check(xcb_ungrab_key_checked(m_connection.get(), key, root(), modifiers)));
    }

    /// Its own connection: what it says of keys is what its window got.
    XcbConnection& connection() { return m_connection; }

private:
    XcbConnection m_connection;
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

private Q_SLOTS:
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
        QTest::newRow("caps") << QList<int>{pcKey::capsLock};
        QTest::newRow("num") << QList<int>{pcKey::numLock};
        QTest::newRow("caps and num") << QList<int>{pcKey::capsLock, pcKey::numLock};
    }

    void pressAndRelease()
    {
        QFETCH(QList<int>, locks);
        QVERIFY(add(optionCommandF));
        for (const int lock : locks)
            m_other->type(static_cast<quint8>(lock));
        m_other->pressModifiers();
        m_other->press(pcKey::f);
        QTRY_COMPARE(m_kinds, QList<quint32>{pressed});
        m_other->liftModifiers(); // first
        m_other->lift(pcKey::f);
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
        m_other->typeShortcut();
        QTRY_COMPARE(last.kind, released);
        QCOMPARE(last.identity.id, 17U);
        QVERIFY(last.time != 0);
    }

    void holdingFiresOnce()
    {
        QVERIFY(add(optionCommandF));
        const QSignalSpy presses(m_connection.get(), &XcbConnection::keyPressed);
        m_other->setRepeating(true);
        m_other->pressModifiers();
        m_other->press(pcKey::f);
        QTRY_VERIFY(presses.size() >= 4); // it repeats
        QCOMPARE(m_kinds, QList<quint32>{pressed});
        m_other->lift(pcKey::f);
        m_other->liftModifiers();
        QTRY_COMPARE(m_kinds, QList<quint32>({pressed, released}));
    }

    void otherModifiersAreNotOurs()
    {
        QVERIFY(add(optionCommandF));
        const QSignalSpy others(&m_other->connection(), &XcbConnection::keyPressed);
        m_other->press(keyShift);
        m_other->typeShortcut();
        m_other->lift(keyShift);
        QTRY_COMPARE(others.size(), 4);
        m_other->typeShortcut();
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
        QVERIFY(m_other->grab(pcKey::f, modifiers));
        QVERIFY(isReserved(optionCommandF));
        QVERIFY(!add(optionCommandF));
        m_other->release(pcKey::f, modifiers);
        const auto plain = static_cast<quint16>(XCB_MOD_MASK_1 | XCB_MOD_MASK_4 | XCB_MOD_MASK_2);
        QTRY_VERIFY2(m_other->grab(pcKey::f, plain), "a part of what was refused is still held");
        m_other->release(pcKey::f, plain);
        QVERIFY(!isReserved(optionCommandF));
        QVERIFY(add(optionCommandF));
        QVERIFY(!isReserved(optionCommandF)); // held by ourselves, and still so
        QVERIFY(!m_other->grab(pcKey::f, modifiers));
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
        QTRY_VERIFY(m_other->isFree(pcKey::f));
        m_other->typeShortcut();
        QTRY_COMPARE(others.size(), 3);
        QVERIFY(m_kinds.isEmpty());
        m_events->addEventTypes(HotKeyEvents::hotKeyEvents);
        m_other->typeShortcut();
        QTRY_COMPARE(m_kinds, QList<quint32>({pressed, released}));
    }

    void whatIsGivenBackIsFree()
    {
        const auto modifiers = static_cast<quint16>(XCB_MOD_MASK_1 | XCB_MOD_MASK_4);
        const auto reference = add(optionCommandF);
        QVERIFY(!m_other->grab(pcKey::f, modifiers));
        m_events->unregisterHotKey(reference.value());
        QTRY_VERIFY(m_other->grab(pcKey::f, modifiers));
        m_other->release(pcKey::f, modifiers);
        QVERIFY(add(optionCommandF));
        m_events.reset();
        QTRY_VERIFY(m_other->grab(pcKey::f, modifiers));
    }

    void anotherLayout()
    {
        const XcbKeyboard keyboard(*m_connection);
        QCOMPARE(keyboard.character(static_cast<int>(Key::y)), u"y"_s);
        const Shortcut commandY(Key::y, Modifier::command);
        QVERIFY(add(commandY));
        const std::array<std::pair<QString, QString>, 3> layouts = {
            {{u"de"_s, u"z"_s}, {u"ru"_s, u"н"_s}, {u"us"_s, u"y"_s}}};
        for (const auto& [layout, character] : layouts) {
            setLayout(layout);
            QTRY_COMPARE(keyboard.character(static_cast<int>(Key::y)), character);
            m_kinds.clear();
            m_other->press(pcKey::super);
            m_other->type(keyY);
            m_other->lift(pcKey::super);
            QTRY_COMPARE(m_kinds, QList<quint32>({pressed, released}));
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
        m_other->typeShortcut();
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
        QCOMPARE(keyboard.carbonKeyCode(pcKey::f), std::optional(3));
    }
};

VARNO_TEST(QCoreApplication, XcbHotKeysTest)
#include "XcbHotKeysTest.moc"
