#include "platform/CarbonModifiers.h"
#include "platform/fake/FakeKeyboard.h"
#include "platform/linux/PortalAnimationSetting.h"
#include "platform/linux/PortalConnection.h"
#include "platform/linux/PortalShortcutSession.h"
#include "tests/PortalDesktop.h"
#include "tests/PortalRecorder.h"
#include "tests/Test.h"

#include <QDBusConnectionInterface>
#include <QDBusMetaType>

namespace {

using Reference = HotKeyEvents::Reference;
using Heard = QList<std::pair<quint32, quint32>>; // kinds, ids

constexpr quint32 pressed = 5;
constexpr quint32 released = 6;
constexpr int optionCommand = carbonModifier::option | carbonModifier::command;
constexpr int keyF = 0x03;
constexpr int keyG = 0x05;
constexpr int keyJ = 0x26;
const auto idF = u"key-3-2304"_s;
const auto idJ = u"key-38-2304"_s;

/// A bus with a desktop on it, and hot keys by its portal, which is started when the test wants it.
struct Fixture {
    Fixture()
    {
        events->installHandler([this](const HotKeyEvent& event) {
            heard << std::pair(event.kind, event.identity.id);
            time = event.time;
            return 0;
        });
        events->setBindingHandler([this](Reference reference, const HotKeyBinding& binding) {
            if (binding.isBound)
                triggers << binding.trigger;
            else
                refused << reference;
        });
        events->addEventTypes(HotKeyEvents::hotKeyEvents);
        if (!desktop.registerObject(u"/org/freedesktop/portal/desktop"_s, &backend,
                                    QDBusConnection::ExportAllContents) ||
            !desktop.registerService(Frontend::desktopName))
            qFatal("The desktop cannot be reached");
    }
    ~Fixture()
    {
        events.reset();
        for (const char* const side : {"program", "desktop"})
            QDBusConnection::disconnectFromBus(name(side));
    }
    Q_DISABLE_COPY_MOVE(Fixture)

    void startPortal(bool hasShortcuts = true)
    {
        frontend = std::make_unique<Frontend>(bus, hasShortcuts);
        frontend->start();
        QTRY_VERIFY(desktop.interface()->isServiceRegistered(Frontend::name));
    }
    /// And whatever it knew is forgotten.
    void stopPortal()
    {
        frontend->stop();
        QTRY_VERIFY(portal.owner().isEmpty());
        backend.sessions.clear();
    }

    [[nodiscard]] std::optional<Reference> add(int key, quint32 id = 1) const
    {
        return events->registerHotKey(key, optionCommand, {.signature = 1, .id = id});
    }

    /// Presses it once the desktop has been told of it.
    void tryToHear(const QString& id, quint32 identity)
    {
        QTRY_VERIFY(backend.serves(id));
        backend.activate(id);
        backend.deactivate(id);
        QTRY_COMPARE(heard.size(), 2);
        QCOMPARE(std::exchange(heard, {}), Heard({{pressed, identity}, {released, identity}}));
        QCOMPARE(time, Backend::timeOfRelease);
    }

    [[nodiscard]] QString name(const char* side) const
    {
        return QString::fromLatin1(side) + bus.address();
    }

    PrivateBus bus;
    QDBusConnection desktop = QDBusConnection::connectToBus(bus.address(), name("desktop"));
    Backend backend{desktop};
    std::unique_ptr<Frontend> frontend;
    FakeKeyboard keyboard;
    PortalConnection portal{
        [this] { return QDBusConnection::connectToBus(bus.address(), name("program")); }};
    std::unique_ptr<DesktopHotKeyEvents> events =
        std::make_unique<DesktopHotKeyEvents>(portal, portalShortcuts(portal, keyboard));
    Heard heard;
    quint32 time = 0; ///< of the last one heard
    QList<Reference> refused;
    QStringList triggers; ///< of those that are bound
};

/// One whose shortcut F is heard.
struct FixtureWithF : Fixture {
    FixtureWithF()
    {
        startPortal();
        reference = add(keyF).value();
        tryToHear(idF, 1);
    }

    Reference reference = 0;
};

} // namespace

class PortalHotKeysTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (Frontend::program().isEmpty() ||
            QStandardPaths::findExecutable(u"dbus-daemon"_s).isEmpty())
            QSKIP("xdg-desktop-portal or dbus-daemon is not installed");
        QCoreApplication::setApplicationName(u"Varno"_s);
        qDBusRegisterMetaType<PortalShortcut>();
        qDBusRegisterMetaType<QList<PortalShortcut>>();
    }

    void pressAndRelease()
    {
        Fixture f;
        f.startPortal();
        QVERIFY(f.add(keyF, 17));
        f.tryToHear(idF, 17);
        QCOMPARE(f.backend.bound.constFirst().properties,
                 QVariantMap({{u"description"_s, u"Varno (Alt+Super+F)"_s},
                              {u"preferred_trigger"_s, u"ALT+LOGO+f"_s}}));
        QVERIFY(f.add(keyJ, 18));
        QVERIFY(!f.add(keyJ, 19));
        f.tryToHear(idJ, 18);
        f.events->unregisterHotKey(f.add(keyG, 20).value()); // both in one turn
        QCoreApplication::processEvents();
        f.tryToHear(idJ, 18);
        QCOMPARE(f.backend.bindings, 2);
        QVERIFY(f.refused.isEmpty());
    }

    void eachPressHasOneRelease()
    {
        FixtureWithF f;
        f.backend.deactivate(idF);
        f.backend.activate(idF);
        f.backend.activate(idF);
        f.backend.deactivate(idF);
        f.backend.deactivate(idF);
        f.backend.activate(u"key-4-2304"_s);
        f.backend.activate(idF);
        QTRY_COMPARE(f.heard, Heard({{pressed, 1}, {released, 1}, {pressed, 1}}));
    }

    void tellsWhatIsBound()
    {
        Fixture f;
        f.backend.trigger = u"Alt+Super+G"_s;
        f.startPortal();
        QVERIFY(f.add(keyF));
        QTRY_COMPARE(f.triggers, QStringList{u"Alt+Super+G"_s});
        f.backend.change(idF, u"F12"_s);
        QTRY_COMPARE(f.triggers.constLast(), u"F12"_s);
        QVERIFY(f.refused.isEmpty());
    }

    void refusals()
    {
        for (const auto& [name, creation, binding, granted, refused] :
             Rows<const char*, uint, uint, QStringList, int>{{"no session", 2, 0, {idF, idJ}, 2},
                                                             {"by the user", 0, 1, {idF, idJ}, 2},
                                                             {"one of two", 0, 0, {idJ}, 1}}) {
            const InRow row(name);
            Fixture f;
            f.backend.creation = creation;
            f.backend.binding = binding;
            f.backend.granted = granted;
            f.startPortal();
            const auto first = f.add(keyF, 1);
            QVERIFY(f.add(keyJ, 2));
            QTRY_COMPARE(f.refused.size(), refused);
            QVERIFY(f.refused.contains(first.value()));
            QTRY_COMPARE(f.backend.openSessions().size(), 2 - refused);
            if (refused == 1)
                f.tryToHear(idJ, 2);

            f.backend.creation = f.backend.binding = 0;
            f.backend.granted.reset();
            f.events->unregisterHotKey(*first);
            QVERIFY(f.add(keyF, 3)); // and this time it is
            f.tryToHear(idF, 3);
        }
    }

    void noPortalForShortcuts()
    {
        for (const bool isPortal : {true, false}) {
            const InRow row(isPortal);
            Fixture f;
            if (isPortal)
                f.startPortal(false);
            const auto reference = f.add(keyF);
            QVERIFY(reference);
            QVERIFY(f.refused.isEmpty()); // not at once
            QTRY_COMPARE(f.refused, QList<Reference>{*reference});
        }
    }

    void portalRestarts()
    {
        Fixture f;
        f.backend.asksForEver = true;
        f.startPortal();
        QVERIFY(f.add(keyF));
        QTRY_COMPARE(f.backend.bindings, 1);
        f.stopPortal(); // while it asks
        f.backend.asksForEver = false;
        f.frontend->start();
        f.tryToHear(idF, 1);
        f.backend.activate(idF);
        QTRY_COMPARE(f.heard.size(), 1);
        f.heard.clear();
        f.stopPortal();
        f.frontend->start();
        f.tryToHear(idF, 1); // pressed anew: its release is not waited for
        QCOMPARE(f.backend.bindings, 3);
        QVERIFY(f.refused.isEmpty());
    }

    void desktopEndsTheSession()
    {
        FixtureWithF f;
        Q_EMIT f.backend.sessions.begin()->second->Closed();
        QTRY_COMPARE(f.refused, QList<Reference>{f.reference});
    }

    void changingFast()
    {
        Fixture f;
        f.startPortal();
        constexpr int last = 0x12;
        const QString lastId = u"key-%1-2304"_s.arg(last);
        auto reference = f.add(keyJ);
        for (int key = 0; key <= last; ++key) {
            f.events->unregisterHotKey(reference.value());
            reference = f.add(key, quint32(key));
            QTest::qWait(key % 4); // into every step of the ones before
        }
        f.tryToHear(lastId, last);
        QTRY_COMPARE(f.backend.openSessions().size(), 1);
        QCOMPARE(f.backend.sessions.at(f.backend.openSessions().constFirst())->shortcuts,
                 QStringList{lastId});
        QVERIFY(f.refused.isEmpty());
        f.events->unregisterHotKey(*reference);
        QTRY_VERIFY(f.backend.openSessions().isEmpty());
    }

    void pausing()
    {
        FixtureWithF f;
        f.backend.activate(idF);
        QTRY_COMPARE(f.heard.size(), 1);
        f.heard.clear();
        f.events->removeEventTypes(HotKeyEvents::hotKeyEvents);
        f.backend.deactivate(idF);
        f.backend.activate(idF);
        QVERIFY(f.add(keyJ, 2));
        QTRY_COMPARE(f.backend.bindings, 2); // the signals before it have come
        f.events->addEventTypes(HotKeyEvents::hotKeyEvents);
        f.tryToHear(idJ, 2);
    }

    void saysWhoItIsFirst()
    {
        Fixture f;
        const PortalRecorder recorder(f.bus.address());
        QVERIFY(recorder.isRegistered());
        PortalAnimationSetting setting(f.portal);
        QVERIFY(setting.isEnabled());
        QVERIFY(f.add(keyF));
        QTRY_COMPARE(f.refused.size(), 1);
        QTRY_COMPARE(recorder.calls().size(), 3);
        QStringList calls = recorder.calls();
        QCOMPARE(calls.takeFirst(), u"Register com.kelbrin.varno"_s);
        calls.sort();
        QCOMPARE(calls, QStringList({u"CreateSession"_s, u"ReadAll"_s}));
    }

    void neverRegistered()
    {
        Fixture f;
        QVERIFY(!f.add(0x7F)); // no key
        QVERIFY(!f.events->registerHotKey(keyF, carbonModifier::function, {}));
        QVERIFY(!f.events->isReserved(keyF, optionCommand));
    }

    void triggers()
    {
        FakeKeyboard keyboard;
        constexpr int control = carbonModifier::control;
        constexpr int all = control | carbonModifier::shift | optionCommand;
        for (const auto& [key, typed, modifiers, trigger, shown] :
             Rows<int, QString, int, QString, QString>{
                 {keyJ, u"j"_s, all, u"CTRL+ALT+SHIFT+LOGO+j"_s, u"Ctrl+Alt+Shift+Super+J"_s},
                 {0x06, u"y"_s, optionCommand, u"ALT+LOGO+y"_s, u"Alt+Super+Y"_s}, // German
                 {0x12, u"&"_s, optionCommand, u"ALT+LOGO+ampersand"_s, u"Alt+Super+&"_s},
                 {keyF, u"а"_s, optionCommand, u"ALT+LOGO+f"_s, u"Alt+Super+F"_s}, // Russian
                 {0x7B, u""_s, control, u"CTRL+Left"_s, u"Ctrl+Left"_s},
                 {0x74, u""_s, control, u"CTRL+Prior"_s, u"Ctrl+PgUp"_s},
                 {0x57, u"5"_s, control, u"CTRL+KP_5"_s, u"Ctrl+Num+5"_s}}) {
            const InRow row(trigger);
            keyboard.setCharacters({{key, typed}});
            const auto properties = portalShortcut(key, modifiers, keyboard).properties;
            QCOMPARE(properties.value(u"preferred_trigger"_s).toString(), trigger);
            QCOMPARE(properties.value(u"description"_s).toString(), u"Varno (%1)"_s.arg(shown));
        }
    }
};

VARNO_TEST(QCoreApplication, PortalHotKeysTest)
#include "PortalHotKeysTest.moc"
