#include "platform/linux/XcbConnection.h"
#include "platform/linux/XcbHotKeyEvents.h"
#include "platform/linux/XcbKeyboard.h"
#include "shortcuts/Shortcut.h"
#include "tests/HotKeyCases.h"
#include "tests/XDesktop.h"

#include <QProcess>
#include <QSignalSpy>

namespace {

const Shortcut optionCommandF(Key::f, Modifier::option | Modifier::command);
constexpr quint32 pressed = 5;
constexpr quint32 released = 6;

/// Another program: a window that has the focus, somebody at the keyboard, and grabs of its own.
class OtherClient : public XDesktop {
public:
    OtherClient()
    {
        QVERIFY(openWindow() != XCB_NONE);
        QTRY_VERIFY(isFree()); // once those of the test before are gone
    }

    /// Whether nobody has F, with any modifiers.
    bool isFree()
    {
        const bool granted = grab(pcKey::f, XCB_MOD_MASK_ANY);
        if (granted)
            release(pcKey::f, XCB_MOD_MASK_ANY);
        return granted;
    }

    /// How many keys were pressed in its window so far.
    int keys()
    {
        while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(connection())})
            m_keys += event->response_type == XCB_KEY_PRESS ? 1 : 0;
        return m_keys;
    }

private:
    int m_keys = 0;
};

} // namespace

class XcbHotKeysTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<OtherClient> m_other;
    std::unique_ptr<XcbConnection> m_connection;
    std::unique_ptr<XcbHotKeyEvents> m_events;
    QList<quint32> m_kinds;
    HotKeyEvent m_last;

    std::optional<HotKeyEvents::Reference> add(const Shortcut& shortcut, quint32 id = 1)
    {
        return m_events->registerHotKey(shortcut.carbonKeyCode(), shortcut.carbonModifiers(),
                                        {.signature = 1, .id = id});
    }

    bool isReserved()
    {
        return m_events->isReserved(optionCommandF.carbonKeyCode(),
                                    optionCommandF.carbonModifiers());
    }

    void verifyHeard()
    {
        QTRY_COMPARE(m_kinds, QList<quint32>({pressed, released}));
        m_kinds.clear();
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
        m_events->installHandler([this](const HotKeyEvent& event) {
            m_kinds << event.kind;
            m_last = event;
            return 0;
        });
        m_events->addEventTypes(HotKeyEvents::hotKeyEvents);
    }

    void cleanup()
    {
        m_events.reset();
        m_connection.reset();
        m_other.reset();
    }

    void pressAndRelease()
    {
        QVERIFY(add(optionCommandF, 17));
        for (const QList<quint8>& locks :
             {QList<quint8>(), {pcKey::numLock}, {pcKey::capsLock, pcKey::numLock}}) {
            const InRow row(locks);
            for (const quint8 lock : locks)
                m_other->type(lock);
            m_other->pressModifiers();
            m_other->press(pcKey::f);
            QTRY_COMPARE(m_kinds, QList<quint32>{pressed});
            m_other->liftModifiers(); // first
            m_other->lift(pcKey::f);
            verifyHeard();
            QCOMPARE(m_last.identity.id, 17U);
            QVERIFY(m_last.time != 0);
            for (const quint8 lock : locks)
                m_other->type(lock);
        }
    }

    void contract()
    {
        m_events->removeEventTypes(HotKeyEvents::hotKeyEvents);
        verifyHotKeys(
            {.events = *m_events,
             .type =
                 [this] { // once the server has done what it was asked for
                     const XcbReply<xcb_get_input_focus_reply_t> done(xcb_get_input_focus_reply(
                         m_connection->get(), xcb_get_input_focus(m_connection->get()), nullptr));
                     m_other->typeShortcut();
                 },
             .takeForAnother =
                 [this](bool taken) {
                     if (taken)
                         QVERIFY(m_other->grab(pcKey::f, pcKey::altSuper));
                     else
                         QTRY_VERIFY(m_other->isFree()); // which gives it back
                 }});
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
        verifyHeard();
    }

    void whatIsNotOursGoesToTheFocus()
    {
        QVERIFY(add(optionCommandF));
        m_other->press(pcKey::shift);
        m_other->typeShortcut();
        m_other->lift(pcKey::shift);
        QTRY_COMPARE(m_other->keys(), 4);
        m_events->removeEventTypes(HotKeyEvents::hotKeyEvents); // for a pause
        QTRY_VERIFY(m_other->isFree());
        m_other->typeShortcut();
        QTRY_COMPARE(m_other->keys(), 4 + 3);
        QVERIFY(m_kinds.isEmpty());
        m_events->addEventTypes(HotKeyEvents::hotKeyEvents);
        m_other->typeShortcut();
        verifyHeard();
    }

    void conflicts()
    {
        constexpr quint16 withLocks = pcKey::altSuper | XCB_MOD_MASK_2 | XCB_MOD_MASK_LOCK;
        QVERIFY(m_other->grab(pcKey::f, withLocks));
        QVERIFY(isReserved());
        QVERIFY(!add(optionCommandF));
        m_other->release(pcKey::f, withLocks);
        QTRY_VERIFY2(m_other->isFree(), "a part of what was refused is still held");
        QVERIFY(!isReserved());
        const auto reference = add(optionCommandF);
        QVERIFY(reference);
        QVERIFY(!isReserved()); // held by ourselves, and still so
        QVERIFY(!m_other->grab(pcKey::f, withLocks));
        m_events->unregisterHotKey(*reference);
        QTRY_VERIFY(m_other->isFree());
        for (const Shortcut& shortcut : {Shortcut(0x7F, 0x100), Shortcut(-8, 0x100), // no such key
                                         Shortcut(Key::f, Modifier::function)}) // no modifier of X
            QVERIFY(!add(shortcut));
        QVERIFY(add(optionCommandF));
        m_events.reset();
        QTRY_VERIFY(m_other->isFree());
    }

    void anotherLayout()
    {
        const XcbKeyboard keyboard(*m_connection);
        QVERIFY(add(Shortcut(Key::y, Modifier::command)));
        for (const auto& [layout, isSecond, character] : Rows<QString, bool, QString>{
                 {u"de"_s, false, u"z"_s}, {u"us,ru"_s, true, u"н"_s}, {u"us"_s, false, u"y"_s}}) {
            const InRow row(layout);
            QCOMPARE(
                QProcess::execute(u"setxkbmap"_s, {layout, u"-option"_s, u"grp:sclk_toggle"_s}), 0);
            if (isSecond)
                m_other->type(pcKey::scrollLock);
            QTRY_COMPARE(keyboard.character(static_cast<int>(Key::y)), character);
            m_kinds.clear();
            m_other->typeWith(pcKey::super, pcKey::y);
            verifyHeard();
            if (isSecond)
                m_other->type(pcKey::scrollLock);
        }
    }

    void noServer()
    {
        const QByteArray display = qgetenv("DISPLAY");
        qputenv("DISPLAY", "");
        XcbConnection connection;
        qputenv("DISPLAY", display);
        XcbHotKeyEvents events(connection);
        QVERIFY(!events.registerHotKey(3, 0x100, {.signature = 1, .id = 1}));
        QVERIFY(!events.isReserved(3, 0x100));
        const XcbKeyboard keyboard(connection);
        QVERIFY(keyboard.character(3).isEmpty());
        QCOMPARE(keyboard.carbonKeyCode({.scanCode = pcKey::f}), std::optional(3));
    }
};

VARNO_TEST(QCoreApplication, XcbHotKeysTest)
#include "XcbHotKeysTest.moc"
