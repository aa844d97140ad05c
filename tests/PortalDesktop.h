#pragma once

#include "platform/linux/PortalShortcut.h"
#include "tests/FileContents.h"
#include "tests/Patience.h"
#include "tests/PrivateBus.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusObjectPath>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <map>
#include <memory>
#include <utility>

namespace varno {

using namespace Qt::StringLiterals;

/// The real portal, with a desktop of our own behind it.
class Frontend {
public:
    inline static const QString name = u"org.freedesktop.portal.Desktop"_s;
    inline static const QString desktopName = u"org.freedesktop.impl.portal.desktop.standin"_s;

    Frontend(const PrivateBus& bus, bool hasShortcuts)
    {
        setContents(m_folder.filePath(u"standin.portal"_s),
                    "[portal]\nDBusName=" + desktopName.toLatin1() +
                        "\nUseIn=standin\nInterfaces=org.freedesktop.impl.portal." +
                        (hasShortcuts ? "GlobalShortcuts" : "Wallpaper") + '\n');
        // Later portals know no program but those that are installed.
        setContents(m_folder.filePath(u"applications/com.kelbrin.varno.desktop"_s),
                    "[Desktop Entry]\nType=Application\nName=Varno\nExec=true\n");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, bus.address());
        for (const char* const folder :
             {"XDG_DESKTOP_PORTAL_DIR", "XDG_RUNTIME_DIR", "XDG_DATA_HOME"})
            environment.insert(QString::fromLatin1(folder), m_folder.path());
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
    QTemporaryDir m_folder;
    QProcess m_process;
};

/// What a desktop makes for a session.
class BackendSession : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.impl.portal.Session")

public:
    QStringList shortcuts;
    bool isOpen = true;

public Q_SLOTS:
    void Close() { isOpen = false; }

Q_SIGNALS:
    void Closed();
};

/// A desktop: what it answers is told before, what it was asked is seen afterwards.
class Backend : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.impl.portal.GlobalShortcuts")
    Q_PROPERTY(uint version MEMBER version CONSTANT)

public:
    static constexpr quint32 timeOfRelease = 4712;

    const uint version = 1;
    uint creation = 0; ///< the answers
    uint binding = 0;
    bool asksForEver = false;
    std::optional<QStringList> granted; ///< or whatever is asked for
    QString trigger;                    ///< what it says that each is bound to
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

    /// Whether a session holds the shortcut.
    [[nodiscard]] bool serves(const QString& id) const
    {
        for (const QString& path : openSessions())
            if (sessions.at(path)->shortcuts.contains(id))
                return true;
        return false;
    }

    void activate(const QString& id)
    {
        for (const QString& session : openSessions())
            Q_EMIT Activated(QDBusObjectPath(session), id, timeOfRelease - 1, {});
    }
    void deactivate(const QString& id)
    {
        for (const QString& session : openSessions())
            Q_EMIT Deactivated(QDBusObjectPath(session), id, timeOfRelease, {});
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
            answer.last().properties.insert(u"trigger_description"_s, trigger);
        }
        results.insert(u"shortcuts"_s, QVariant::fromValue(answer));
        return binding;
    }

    /// As if the user had chosen another one in the desktop's settings.
    void change(const QString& id, const QString& newTrigger)
    {
        for (const QString& session : openSessions())
            Q_EMIT ShortcutsChanged(QDBusObjectPath(session),
                                    {{id, {{u"trigger_description"_s, newTrigger}}}});
    }

Q_SIGNALS:
    void ShortcutsChanged(const QDBusObjectPath&, const QList<varno::PortalShortcut>&);
    void Activated(const QDBusObjectPath&, const QString&, qulonglong, const QVariantMap&);
    void Deactivated(const QDBusObjectPath&, const QString&, qulonglong, const QVariantMap&);

private:
    QDBusConnection m_bus;
};

} // namespace varno
