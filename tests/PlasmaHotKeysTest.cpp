#include "platform/CarbonModifiers.h"
#include "platform/fake/FakeKeyboard.h"
#include "platform/linux/DesktopService.h"
#include "platform/linux/PlasmaShortcut.h"
#include "tests/Patience.h"
#include "tests/PlasmaDesktop.h"
#include "tests/PrivateBus.h"
#include "tests/Test.h"

#include <QStandardPaths>

namespace {

constexpr int optionCommand = carbonModifier::option | carbonModifier::command;
constexpr int altMetaF = 0x18000000 + Qt::Key_F;
constexpr int metaG = 0x10000000 + Qt::Key_G;
const auto idF = u"key-3-2304"_s;

struct Fixture {
    Fixture()
    {
        desktop.registerService(PlasmaShortcut::service);
        events.installHandler([this](const HotKeyEvent& event) {
            heard << event.kind;
            return 0;
        });
        events.setBindingHandler([this](HotKeyEvents::Reference, const HotKeyBinding& binding) {
            told << (binding.isBound ? u"bound "_s + binding.trigger : u"not bound"_s);
        });
        events.addEventTypes(HotKeyEvents::hotKeyEvents);
    }
    ~Fixture()
    {
        QDBusConnection::disconnectFromBus(u"program"_s);
        QDBusConnection::disconnectFromBus(u"desktop"_s);
    }
    Q_DISABLE_COPY_MOVE(Fixture)

    HotKeyEvents::Reference add()
    {
        return events.registerHotKey(3, optionCommand, {.signature = 1, .id = 1}).value();
    }
    /// Whether that is the last that was told, now or soon.
    void waitFor(const QString& last) { QTRY_COMPARE(told.value(told.size() - 1), last); }
    void tryToHear()
    {
        heard.clear();
        plasma.press(idF);
        QTRY_COMPARE(heard, QList<quint32>({hotKeyPressed, hotKeyReleased}));
    }

    PrivateBus bus;
    QDBusConnection desktop = QDBusConnection::connectToBus(bus.address(), u"desktop"_s);
    PlasmaDesktop plasma{desktop};
    FakeKeyboard keyboard;
    DesktopService service{PlasmaShortcut::service, [this] {
                               return QDBusConnection::connectToBus(bus.address(), u"program"_s);
                           }};
    DesktopHotKeyEvents events{service, plasmaShortcuts(service, keyboard)};
    QList<quint32> heard;
    QStringList told;
};

} // namespace

class PlasmaHotKeysTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(u"dbus-daemon"_s).isEmpty())
            QSKIP("dbus-daemon is not installed");
        QCoreApplication::setApplicationName(u"Varno"_s);
    }

    void followsTheSettings()
    {
        Fixture f;
        f.add();
        f.waitFor(u"bound "_s);
        QCOMPARE(f.plasma.titles, QStringList({u"Varno"_s, u"Open Varno"_s}));
        QCOMPARE(f.plasma.keys.value(idF), altMetaF);
        f.tryToHear();
        for (const auto& [key, told] : Rows<int, QString>{
                 {metaG, u"bound ⌘G"_s}, {0, u"not bound"_s}, {altMetaF, u"bound "_s}}) {
            f.plasma.choose(idF, key);
            f.waitFor(told);
        }
        f.tryToHear();
    }

    void whatIsAskedForOrKnown()
    {
        for (const auto& [known, taken, told] :
             Rows<int, int, QString>{{metaG, 0, u"bound ⌘G"_s}, {0, altMetaF, u"not bound"_s}}) {
            const InRow row(told);
            Fixture f;
            if (known != 0)
                f.plasma.keys[idF] = known;
            f.plasma.taken = {taken};
            const auto reference = f.add();
            f.waitFor(told);
            f.plasma.taken.clear();
            f.events.unregisterHotKey(reference);
            QTRY_VERIFY(f.plasma.present.isEmpty());
            f.add(); // a new wish goes before what was chosen
            f.waitFor(u"bound "_s);
            QTRY_COMPARE(f.plasma.component.cleanings, 1);
        }
    }

    void pausesRestartsAndEnds()
    {
        Fixture f;
        f.add();
        f.waitFor(u"bound "_s);
        f.events.removeEventTypes(HotKeyEvents::hotKeyEvents);
        QTRY_VERIFY(f.plasma.present.isEmpty());
        f.events.addEventTypes(HotKeyEvents::hotKeyEvents);
        QTRY_VERIFY(f.plasma.present.contains(idF));
        f.desktop.unregisterService(PlasmaShortcut::service);
        QTRY_VERIFY(f.service.owner().isEmpty());
        f.plasma.present.clear();
        f.desktop.registerService(PlasmaShortcut::service);
        QTRY_VERIFY(f.plasma.present.contains(idF));
        f.tryToHear();
        f.bus.end();
        f.waitFor(u"not bound"_s);
    }
};

VARNO_TEST(QCoreApplication, PlasmaHotKeysTest)
#include "PlasmaHotKeysTest.moc"
