#include "platform/CarbonModifiers.h"
#include "platform/fake/FakeKeyboard.h"
#include "platform/linux/PortalAnimationSetting.h"
#include "platform/linux/PortalConnection.h"
#include "platform/linux/PortalHotKeyEvents.h"

#include <QDBusConnectionInterface>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <map>
#include <memory>
#include <utility>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

constexpr quint32 pressed = 5;
constexpr quint32 released = 6;
constexpr int optionCommand = carbonModifier::option | carbonModifier::command;
constexpr int keyF = 0x03;
constexpr int keyJ = 0x26;
const auto idF = u"key-3-2304"_s;
const auto idJ = u"key-38-2304"_s;

const auto desktopPath = u"/org/freedesktop/portal/desktop"_s;
const auto frontendName = u"org.freedesktop.portal.Desktop"_s;
const auto backendName = u"org.freedesktop.impl.portal.desktop.standin"_s;
const auto plasmaName = u"org.freedesktop.impl.portal.desktop.kde"_s;

/// A session bus on which nothing runs and nothing is started.
class Bus {
public:
    Bus()
    {
        QFile config(m_folder.filePath(u"bus.conf"_s));
        if (!config.open(QIODevice::WriteOnly))
            return;
        config.write(u"<busconfig><type>session</type><listen>unix:dir=%1</listen>"
                     "<policy context=\"default\"><allow send_destination=\"*\"/>"
                     "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>"_s
                         .arg(m_folder.path())
                         .toUtf8());
        config.close();
        m_daemon.start(u"dbus-daemon"_s, {u"--nofork"_s, u"--print-address"_s,
                                          u"--config-file=%1"_s.arg(config.fileName())});
        if (m_daemon.waitForReadyRead())
            address = QString::fromLatin1(m_daemon.readLine().trimmed());
    }
    ~Bus() { stop(); }
    Q_DISABLE_COPY_MOVE(Bus)

    void stop()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

    QString address;

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
};

/// The real portal, with a desktop of our own behind it.
class Frontend {
public:
    Frontend(const Bus& bus, bool hasShortcuts)
    {
        const QString interface = hasShortcuts ? u"GlobalShortcuts"_s : u"Wallpaper"_s;
        write(u"standin.portal"_s,
              u"[portal]\nDBusName=%1\nUseIn=standin\nInterfaces=org.freedesktop.impl.portal.%2\n"_s
                  .arg(backendName, interface));
        // Later portals know no program but those that are installed.
        write(u"applications/com.kelbrin.varno.desktop"_s,
              u"[Desktop Entry]\nType=Application\nName=Varno\nExec=true\n"_s);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, bus.address);
        environment.insert(u"XDG_DESKTOP_PORTAL_DIR"_s, m_folder.path());
        environment.insert(u"XDG_RUNTIME_DIR"_s, m_folder.path());
        environment.insert(u"XDG_DATA_HOME"_s, m_folder.path());
        environment.insert(u"XDG_CURRENT_DESKTOP"_s, u"standin"_s);
        m_process.setProcessEnvironment(environment);
        m_process.setStandardErrorFile(QProcess::nullDevice());
    }
    ~Frontend() { stop(); }
    Q_DISABLE_COPY_MOVE(Frontend)

    static QString program()
    {
        return QStandardPaths::findExecutable(
            u"xdg-desktop-portal"_s,
            {u"/usr/libexec"_s, u"/usr/lib/xdg-desktop-portal"_s, u"/usr/lib"_s});
    }

    void start() { m_process.start(program(), {}); }
    void stop()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    void write(const QString& name, const QString& text) const
    {
        QFile file(m_folder.filePath(name));
        QVERIFY(QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly));
        file.write(text.toUtf8());
    }

    QTemporaryDir m_folder;
    QProcess m_process;
};

} // namespace

/// What a desktop makes for a session.
class BackendSession : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.impl.portal.Session")

public:
    QStringList shortcuts;
    bool isOpen = true;
    bool isListed = false;

public Q_SLOTS:
    void Close() { isOpen = false; }

Q_SIGNALS:
    void Closed();
};

/// A desktop: what it answers is told before, what it was asked is seen afterwards.
class Backend : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.impl.portal.GlobalShortcuts")
    Q_PROPERTY(uint version MEMBER m_version CONSTANT)

public:
    uint m_version = 1;
    uint creation = 0; ///< the answers
    uint listing = 0;
    uint binding = 0;
    bool asksForEver = false;
    QStringList listed;
    std::optional<QStringList> granted; ///< or whatever is asked for
    QList<PortalShortcut> bound;
    int bindings = 0;
    std::map<QString, std::unique_ptr<BackendSession>> sessions; ///< by path, in their order

    explicit Backend(QDBusConnection bus)
        : m_bus(std::move(bus))
    {
    }

    [[nodiscard]] QStringList openSessions() const
    {
        QStringList open;
        for (const auto& [path, session] : sessions)
            if (session->isOpen)
                open << path;
        return open;
    }

    /// Whether there is one session, and it has been told of the shortcut or knows it from before.
    [[nodiscard]] bool serves(const QString& id) const
    {
        const QStringList open = openSessions();
        if (open.size() != 1)
            return false;
        const BackendSession& session = *sessions.at(open.constFirst());
        return session.isListed && (listed + session.shortcuts).contains(id);
    }

    void activate(const QString& id, qulonglong time = 4711)
    {
        for (const QString& session : openSessions())
            Q_EMIT Activated(QDBusObjectPath(session), id, time, {});
    }
    void deactivate(const QString& id, qulonglong time = 4712)
    {
        for (const QString& session : openSessions())
            Q_EMIT Deactivated(QDBusObjectPath(session), id, time, {});
    }

public Q_SLOTS:
    uint CreateSession(const QDBusObjectPath& /*handle*/, const QDBusObjectPath& session,
                       const QString& /*application*/, const QVariantMap& /*options*/,
                       QVariantMap& /*results*/)
    {
        if (creation == 0) {
            auto& made = sessions[session.path()];
            made = std::make_unique<BackendSession>();
            m_bus.registerObject(session.path(), made.get(), QDBusConnection::ExportAllContents);
        }
        return creation;
    }

    uint ListShortcuts(const QDBusObjectPath& /*handle*/, const QDBusObjectPath& session,
                       QVariantMap& results)
    {
        sessions[session.path()]->isListed = true;
        QList<PortalShortcut> shortcuts;
        for (const QString& id : listed)
            shortcuts << PortalShortcut{id};
        results.insert(u"shortcuts"_s, QVariant::fromValue(shortcuts));
        return listing;
    }

    uint BindShortcuts(const QDBusObjectPath& /*handle*/, const QDBusObjectPath& session,
                       const QList<varno::PortalShortcut>& shortcuts, const QString& /*window*/,
                       const QVariantMap& /*options*/, QVariantMap& results)
    {
        ++bindings;
        setDelayedReply(asksForEver);
        bound = shortcuts;
        QList<PortalShortcut> answer;
        for (const PortalShortcut& shortcut : shortcuts) {
            if (granted && !granted->contains(shortcut.id))
                continue;
            sessions[session.path()]->shortcuts << shortcut.id;
            answer << shortcut;
        }
        results.insert(u"shortcuts"_s, QVariant::fromValue(answer));
        return binding;
    }

Q_SIGNALS:
    void Activated(const QDBusObjectPath&, const QString&, qulonglong, const QVariantMap&);
    void Deactivated(const QDBusObjectPath&, const QString&, qulonglong, const QVariantMap&);

private:
    QDBusConnection m_bus;
};

/// A portal that only notes what it is called for.
class CallRecorder : public QDBusVirtualObject {
    Q_OBJECT

public:
    QStringList calls;

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override
    {
        calls << message.member();
        if (message.member() == u"Register"_s)
            calls.last() += u' ' + message.arguments().value(0).toString();
        bus.send(message.member() == u"Register"_s
                     ? message.createReply()
                     : message.createErrorReply(QDBusError::NotSupported, {}));
        return true;
    }
};

class PortalHotKeysTest : public QObject {
    Q_OBJECT

private:
    using Reference = HotKeyEvents::Reference;

    FakeKeyboard m_keyboard;
    int m_connections = 0;
    std::unique_ptr<Bus> m_bus;
    std::unique_ptr<Frontend> m_frontend;
    std::unique_ptr<Backend> m_backend;
    std::unique_ptr<PortalConnection> m_portal;
    std::unique_ptr<PortalHotKeyEvents> m_events;
    QList<std::pair<quint32, quint32>> m_heard; ///< kinds, ids
    QList<Reference> m_refused;

    [[nodiscard]] QDBusConnection connection(const QString& name) const
    {
        return QDBusConnection::connectToBus(m_bus->address, name);
    }
    [[nodiscard]] QDBusConnection desktop() const
    {
        return connection(u"desktop"_s + m_bus->address);
    }

    void startFrontend(bool hasShortcuts = true)
    {
        m_frontend = std::make_unique<Frontend>(*m_bus, hasShortcuts);
        m_frontend->start();
        QTRY_VERIFY(desktop().interface()->isServiceRegistered(frontendName));
    }

    std::optional<Reference> add(int key, quint32 id = 1, int modifiers = optionCommand)
    {
        return m_events->registerHotKey(key, modifiers, {.signature = 1, .id = id});
    }

    QList<std::pair<quint32, quint32>> takeHeard() { return std::exchange(m_heard, {}); }

    /// Presses it once the desktop has been told of it.
    void tryToHear(const QString& id, quint32 identity)
    {
        const QList<std::pair<quint32, quint32>> wanted = {{pressed, identity},
                                                           {released, identity}};
        QTRY_VERIFY(m_backend->serves(id));
        m_backend->activate(id);
        m_backend->deactivate(id);
        QTRY_COMPARE(m_heard.size(), wanted.size());
        QCOMPARE(takeHeard(), wanted);
    }

private Q_SLOTS:
    void initTestCase()
    {
        if (Frontend::program().isEmpty() ||
            QStandardPaths::findExecutable(u"dbus-daemon"_s).isEmpty())
            QSKIP("xdg-desktop-portal or dbus-daemon is not installed");
        QCoreApplication::setApplicationName(u"Varno"_s);
        qunsetenv("KDE_SESSION_VERSION");
        qDBusRegisterMetaType<PortalShortcut>();
        qDBusRegisterMetaType<QList<PortalShortcut>>();
    }

    void init()
    {
        m_keyboard.setCharacters({});
        m_heard.clear();
        m_refused.clear();
        m_bus = std::make_unique<Bus>();
        QVERIFY(!m_bus->address.isEmpty());
        QDBusConnection desktop = this->desktop();
        m_backend = std::make_unique<Backend>(desktop);
        QVERIFY(desktop.registerObject(desktopPath, m_backend.get(),
                                       QDBusConnection::ExportAllContents));
        QVERIFY(desktop.registerService(backendName));
        m_portal = std::make_unique<PortalConnection>(
            [address = m_bus->address, name = u"program%1"_s.arg(++m_connections)] {
                return QDBusConnection::connectToBus(address, name);
            });
        m_events = std::make_unique<PortalHotKeyEvents>(*m_portal, m_keyboard);
        m_events->installHandler([this](const HotKeyEvent& event) {
            m_heard << std::pair(event.kind, event.identity.id);
            return 0;
        });
        m_events->setRefusalHandler([this](Reference reference) { m_refused << reference; });
        m_events->addEventTypes(HotKeyEvents::hotKeyEvents);
    }

    void cleanup()
    {
        m_events.reset();
        m_portal.reset();
        m_frontend.reset();
        m_backend.reset();
        QDBusConnection::disconnectFromBus(u"program%1"_s.arg(m_connections));
        QDBusConnection::disconnectFromBus(u"desktop"_s + m_bus->address);
        m_bus.reset();
    }

    void pressAndRelease()
    {
        startFrontend();
        QVERIFY(add(keyF, 17));
        QVERIFY(add(keyJ, 18));
        QVERIFY(!add(keyJ, 19));
        tryToHear(idF, 17);
        tryToHear(idJ, 18);
        QCOMPARE(m_backend->bindings, 1);
        QCOMPARE(m_backend->bound.constFirst().properties,
                 QVariantMap({{u"description"_s, u"Varno (Alt+Super+F)"_s},
                              {u"preferred_trigger"_s, u"ALT+LOGO+f"_s}}));
        QVERIFY(m_refused.isEmpty());
    }

    void eachPressHasOneRelease()
    {
        startFrontend();
        QVERIFY(add(keyF));
        QVERIFY(add(keyJ, 2));
        tryToHear(idF, 1);
        m_backend->deactivate(idF);
        m_backend->activate(idF);
        m_backend->activate(idF);
        m_backend->deactivate(idF);
        m_backend->deactivate(idF);
        m_backend->activate(u"key-4-2304"_s);
        m_backend->activate(idJ);
        const QList<std::pair<quint32, quint32>> wanted = {
            {pressed, 1}, {released, 1}, {pressed, 2}};
        QTRY_COMPARE(m_heard.size(), wanted.size());
        QCOMPARE(m_heard, wanted);
    }

    void carriesTheTime()
    {
        startFrontend();
        QVERIFY(add(keyF));
        tryToHear(idF, 1);
        quint32 time = 0;
        m_events->installHandler([&time](const HotKeyEvent& event) {
            time = event.time;
            return 0;
        });
        m_backend->activate(idF, 815);
        QTRY_COMPARE(time, 815U);
    }

    void bindsWhatHasToBe_data()
    {
        QTest::addColumn<bool>("isPlasma");
        QTest::addColumn<uint>("version");
        QTest::addColumn<QStringList>("listed");
        QTest::addColumn<uint>("listing");
        QTest::addColumn<int>("bindings");
        QTest::newRow("new") << false << 1U << QStringList() << 0U << 1;
        QTest::newRow("known") << false << 1U << QStringList{idJ, idF} << 0U << 1;
        QTest::newRow("cannot list") << false << 1U << QStringList() << 2U << 1;
        QTest::newRow("new, Plasma 6.3") << true << 1U << QStringList{idJ} << 0U << 1;
        QTest::newRow("known, Plasma 6.3") << true << 1U << QStringList{idJ, idF} << 0U << 0;
        QTest::newRow("known, Plasma 6.7") << true << 2U << QStringList{idJ, idF} << 0U << 1;
    }

    void bindsWhatHasToBe()
    {
        QFETCH(bool, isPlasma);
        QFETCH(uint, version);
        QFETCH(QStringList, listed);
        QFETCH(uint, listing);
        QFETCH(int, bindings);
        m_backend->m_version = version;
        m_backend->listed = listed;
        m_backend->listing = listing;
        if (isPlasma)
            QVERIFY(desktop().registerService(plasmaName));
        startFrontend();
        QVERIFY(add(keyF));
        tryToHear(idF, 1);
        QTRY_COMPARE(m_backend->bindings, bindings); // a known one may be heard before
        QCOMPARE(m_backend->sessions.size(), 1U);
        QVERIFY(m_refused.isEmpty());
    }

    void refusals_data()
    {
        QTest::addColumn<uint>("creation");
        QTest::addColumn<uint>("binding");
        QTest::addColumn<QStringList>("granted");
        QTest::addColumn<int>("refused");
        const QStringList both = {idF, idJ};
        QTest::newRow("no session") << 2U << 0U << both << 2;
        QTest::newRow("by the user") << 0U << 1U << both << 2;
        QTest::newRow("by the desktop") << 0U << 2U << both << 2;
        QTest::newRow("nothing bound") << 0U << 0U << QStringList() << 2;
        QTest::newRow("one of two") << 0U << 0U << QStringList{idJ} << 1;
    }

    void refusals()
    {
        QFETCH(uint, creation);
        QFETCH(uint, binding);
        QFETCH(QStringList, granted);
        QFETCH(int, refused);
        m_backend->creation = creation;
        m_backend->binding = binding;
        m_backend->granted = granted;
        startFrontend();
        const auto first = add(keyF, 1);
        const auto second = add(keyJ, 2);
        QTRY_COMPARE(m_refused.size(), refused);
        QVERIFY(m_refused.contains(first.value()));
        QCOMPARE(m_refused.contains(second.value()), refused == 2);
        QTRY_COMPARE(m_backend->openSessions().size(), 2 - refused);
        if (refused == 1)
            tryToHear(idJ, 2);

        m_backend->creation = 0;
        m_backend->binding = 0;
        m_backend->granted.reset();
        QVERIFY(add(keyF, 3)); // and this time it is
        tryToHear(idF, 3);
    }

    void noPortalForShortcuts_data()
    {
        QTest::addColumn<bool>("isPortal");
        QTest::addColumn<bool>("isBus");
        QTest::newRow("portal without shortcuts") << true << true;
        QTest::newRow("no portal") << false << true;
        QTest::newRow("no bus") << false << false;
    }

    void noPortalForShortcuts()
    {
        QFETCH(bool, isPortal);
        QFETCH(bool, isBus);
        if (isPortal)
            startFrontend(false);
        if (!isBus)
            m_bus->stop();
        const auto reference = add(keyF);
        QVERIFY(reference);
        QVERIFY(m_refused.isEmpty()); // not at once
        QTRY_COMPARE(m_refused, QList<Reference>{*reference});
        m_events->unregisterHotKey(*reference);
        QVERIFY(add(keyF));
        QTRY_COMPARE(m_refused.size(), 2);
    }

    void neverRegistered_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QByteArray>("plasma");
        QTest::newRow("no key") << 0x7F << optionCommand << QByteArray();
        QTest::newRow("no modifier")
            << keyF << (carbonModifier::function | optionCommand) << QByteArray();
        QTest::newRow("Plasma 5") << keyF << optionCommand << QByteArray("5");
    }

    void neverRegistered()
    {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(QByteArray, plasma);
        qputenv("KDE_SESSION_VERSION", plasma);
        QVERIFY(!add(key, 1, modifiers));
        qunsetenv("KDE_SESSION_VERSION");
        QVERIFY(!m_events->isReserved(key, modifiers));
    }

    void portalRestartsWhileItAsks()
    {
        m_backend->asksForEver = true;
        startFrontend();
        QVERIFY(add(keyF, 17));
        QTRY_COMPARE(m_backend->bindings, 1);
        m_frontend->stop();
        QTRY_VERIFY(m_portal->owner().isEmpty());
        m_backend->sessions.clear();
        m_backend->asksForEver = false;
        m_frontend->start();
        tryToHear(idF, 17);
        QVERIFY(m_refused.isEmpty());
    }

    void portalRestarts()
    {
        startFrontend();
        QVERIFY(add(keyF, 17));
        tryToHear(idF, 17);
        m_backend->activate(idF);
        QTRY_COMPARE(m_heard.size(), 1);
        m_heard.clear();
        m_frontend->stop();
        QTRY_VERIFY(m_portal->owner().isEmpty());
        m_backend->sessions.clear();
        m_frontend->start();
        tryToHear(idF, 17); // pressed anew: its release is not waited for
        QCOMPARE(m_backend->bindings, 2);
        QVERIFY(m_refused.isEmpty());
    }

    void desktopEndsTheSession()
    {
        startFrontend();
        const auto reference = add(keyF);
        tryToHear(idF, 1);
        Q_EMIT m_backend->sessions.begin()->second->Closed();
        QTRY_COMPARE(m_refused, QList<Reference>{reference.value()});
    }

    void busIsLost()
    {
        startFrontend();
        const auto first = add(keyF);
        tryToHear(idF, 1);
        m_bus->stop();
        QTRY_VERIFY(!m_portal->bus().isConnected());
        const auto second = add(keyJ);
        QTRY_COMPARE(m_refused.size(), 2);
        QVERIFY(m_refused.contains(first.value()) && m_refused.contains(second.value()));
    }

    void oneTurnIsOneSession()
    {
        startFrontend();
        const auto given = add(keyF, 1);
        m_events->unregisterHotKey(given.value());
        QVERIFY(add(keyJ, 2));
        tryToHear(idJ, 2);
        QCOMPARE(m_backend->sessions.size(), 1U);
        m_events->unregisterHotKey(add(keyF, 3).value());
        QCoreApplication::processEvents();
        tryToHear(idJ, 2);
        QCOMPARE(m_backend->sessions.size(), 1U);
    }

    void changingFast()
    {
        startFrontend();
        constexpr int last = 0x12;
        std::optional<Reference> reference;
        for (int key = 0; key <= last; ++key) {
            if (reference)
                m_events->unregisterHotKey(*reference);
            reference = add(key, quint32(key));
            QVERIFY(reference);
            QTest::qWait(key % 4); // into every step of the ones before
        }
        tryToHear(u"key-%1-2304"_s.arg(last), last);
        QTRY_COMPARE(m_backend->openSessions().size(), 1);
        QCOMPARE(m_backend->sessions.at(m_backend->openSessions().constFirst())->shortcuts,
                 QStringList{u"key-%1-2304"_s.arg(last)});
        QVERIFY(m_refused.isEmpty());
        m_events->unregisterHotKey(*reference);
        QTRY_VERIFY(m_backend->openSessions().isEmpty());
    }

    void pausing()
    {
        startFrontend();
        QVERIFY(add(keyF, 1));
        tryToHear(idF, 1);
        m_backend->activate(idF);
        QTRY_COMPARE(m_heard.size(), 1);
        m_heard.clear();
        m_events->removeEventTypes(HotKeyEvents::hotKeyEvents);
        m_backend->deactivate(idF);
        m_backend->activate(idF);
        QVERIFY(add(keyJ, 2));
        QTRY_COMPARE(m_backend->bindings, 2); // the signals before it have come
        m_events->addEventTypes(HotKeyEvents::hotKeyEvents);
        tryToHear(idJ, 2);
    }

    void handlersMayDestroyAll_data()
    {
        QTest::addColumn<uint>("binding");
        QTest::newRow("pressed") << 0U;
        QTest::newRow("refused") << 1U;
    }

    void handlersMayDestroyAll()
    {
        QFETCH(uint, binding);
        m_backend->binding = binding;
        startFrontend();
        QVERIFY(add(keyF));
        QVERIFY(add(keyJ));
        m_events->installHandler([this](const HotKeyEvent&) {
            m_events.reset();
            return 0;
        });
        m_events->setRefusalHandler([this](Reference) { m_events.reset(); });
        QTRY_COMPARE(m_backend->bindings, 1);
        QTRY_VERIFY([&] {
            m_backend->activate(idF);
            return !m_events;
        }());
        QTRY_VERIFY(m_backend->openSessions().isEmpty());
    }

    void saysWhoItIsFirst()
    {
        CallRecorder recorder;
        QDBusConnection other = connection(u"recorder"_s + m_bus->address);
        QVERIFY(other.registerVirtualObject(desktopPath, &recorder));
        QVERIFY(other.registerService(frontendName));
        PortalAnimationSetting setting(*m_portal);
        QVERIFY(setting.isEnabled());
        QVERIFY(add(keyF));
        QTRY_COMPARE(m_refused.size(), 1);
        QTRY_COMPARE(recorder.calls.size(), 3);
        QCOMPARE(recorder.calls.takeFirst(), u"Register com.kelbrin.varno"_s);
        recorder.calls.sort();
        QCOMPARE(recorder.calls, QStringList({u"CreateSession"_s, u"ReadAll"_s}));
        QDBusConnection::disconnectFromBus(other.name());
    }

    void triggers_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("trigger");
        QTest::addColumn<QString>("shown");
        constexpr int all = carbonModifier::control | carbonModifier::shift | optionCommand;
        QTest::newRow("unknown layout")
            << keyF << u""_s << optionCommand << u"ALT+LOGO+f"_s << u"Alt+Super+F"_s;
        QTest::newRow("all") << keyJ << u"j"_s << all << u"CTRL+ALT+SHIFT+LOGO+j"_s
                             << u"Ctrl+Alt+Shift+Super+J"_s;
        QTest::newRow("none") << 0x6F << u""_s << 0 << u"F12"_s << u"F12"_s;
        QTest::newRow("German") << 0x06 << u"y"_s << optionCommand << u"ALT+LOGO+y"_s
                                << u"Alt+Super+Y"_s;
        QTest::newRow("French") << 0x12 << u"&"_s << optionCommand << u"ALT+LOGO+ampersand"_s
                                << u"Alt+Super+ampersand"_s;
        QTest::newRow("Russian") << keyF << u"а"_s << optionCommand << u"ALT+LOGO+f"_s
                                 << u"Alt+Super+F"_s;
        QTest::newRow("space") << 0x31 << u" "_s << carbonModifier::control << u"CTRL+space"_s
                               << u"Ctrl+space"_s;
        QTest::newRow("arrow") << 0x7B << u""_s << carbonModifier::control << u"CTRL+Left"_s
                               << u"Ctrl+Left"_s;
        QTest::newRow("keypad") << 0x57 << u"5"_s << carbonModifier::control << u"CTRL+KP_5"_s
                                << u"Ctrl+KP_5"_s;
    }

    void triggers()
    {
        QFETCH(int, key);
        QFETCH(QString, typed);
        QFETCH(int, modifiers);
        m_keyboard.setCharacters({{key, typed}});
        const auto shortcut = portalShortcut(key, modifiers, m_keyboard);
        QVERIFY(shortcut);
        QTEST(shortcut->properties.value(u"preferred_trigger"_s).toString(), "trigger");
        QFETCH(QString, shown);
        QCOMPARE(shortcut->properties.value(u"description"_s).toString(),
                 u"Varno (%1)"_s.arg(shown));
    }
};

VARNO_TEST(QCoreApplication, PortalHotKeysTest)
#include "PortalHotKeysTest.moc"
