#include "platform/linux/PortalShortcutSession.h"

#include "platform/linux/PortalConnection.h"
#include "platform/linux/PortalRequest.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QPointer>

#include <utility>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

const QString shortcutsInterface = u"org.freedesktop.portal.GlobalShortcuts"_s;
const QString sessionInterface = u"org.freedesktop.portal.Session"_s;

void registerTypes()
{
    // A slot with a type that is not registered is not connected.
    qRegisterMetaType<QDBusObjectPath>();
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
}

/// The version of the shortcuts of Plasma's own part of the portal.
QDBusMessage plasmaVersionCall()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        u"org.freedesktop.impl.portal.desktop.kde"_s, PortalConnection::path,
        u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call << u"org.freedesktop.impl.portal.GlobalShortcuts"_s << u"version"_s;
    call.setAutoStartService(false); // what another desktop has installed beside its own
    return call;
}

bool isFirstVersion(const QDBusMessage& reply)
{
    return reply.type() == QDBusMessage::ReplyMessage &&
           reply.arguments().value(0).value<QDBusVariant>().variant() == 1U;
}

void close(const QDBusConnection& bus, const QString& owner, const QString& handle)
{
    bus.send(QDBusMessage::createMethodCall(owner, handle, sessionInterface, u"Close"_s));
}

QSet<QString> idsOf(const QList<PortalShortcut>& shortcuts)
{
    QSet<QString> ids;
    for (const PortalShortcut& shortcut : shortcuts)
        ids.insert(shortcut.id);
    return ids;
}

} // namespace

PortalShortcutSession::PortalShortcutSession(PortalConnection& portal,
                                             QList<PortalShortcut> shortcuts)
    : m_portal(portal)
    , m_bus(portal.bus())
    , m_owner(portal.owner())
    , m_shortcuts(std::move(shortcuts))
{
    registerTypes();
    listen(u"Activated"_s, SLOT(takeActivated(QDBusObjectPath, QString, qulonglong)));
    listen(u"Deactivated"_s, SLOT(takeDeactivated(QDBusObjectPath, QString, qulonglong)));
    create(portal);
}

PortalShortcutSession::~PortalShortcutSession()
{
    if (!m_handle.isEmpty())
        close(m_bus, m_owner, m_handle);
}

QSet<QString> PortalShortcutSession::ids() const
{
    return idsOf(m_shortcuts);
}

void PortalShortcutSession::create(PortalConnection& portal)
{
    // Not taken back with this: the portal may not know the request yet, and make the session.
    auto* request = new PortalRequest(portal, &portal);
    connect(request, &PortalRequest::answered, &portal,
            [alive = QPointer(this), bus = m_bus, owner = m_owner](bool granted,
                                                                   const QVariantMap& results) {
                const QString handle =
                    granted ? results.value(u"session_handle"_s).toString() : QString();
                if (alive)
                    alive->takeSession(handle);
                else if (!handle.isEmpty())
                    close(bus, owner, handle);
            });
    request->send(shortcutsInterface, u"CreateSession"_s, {},
                  {{u"session_handle_token"_s, PortalRequest::newToken()}});
}

void PortalShortcutSession::request(const QString& method, const QVariantList& arguments, Step next)
{
    auto* request = new PortalRequest(m_portal, this);
    connect(request, &PortalRequest::answered, this, next);
    request->send(shortcutsInterface, method, arguments);
}

void PortalShortcutSession::listen(const QString& signal, const char* slot)
{
    m_bus.connect(QString(), PortalConnection::path, shortcutsInterface, signal, this, slot);
}

bool PortalShortcutSession::isOurs(const QDBusObjectPath& session) const
{
    return message().service() == m_owner && session.path() == m_handle;
}

void PortalShortcutSession::takeSession(const QString& handle)
{
    if (handle.isEmpty()) {
        refuseAllBut({});
        return;
    }
    m_handle = handle;
    m_bus.connect(QString(), m_handle, sessionInterface, u"Closed"_s, this, SLOT(takeClosed()));
    request(u"ListShortcuts"_s, {QVariant::fromValue(QDBusObjectPath(m_handle))},
            &PortalShortcutSession::takeListed);
}

void PortalShortcutSession::takeListed(bool granted, const QVariantMap& results)
{
    const auto listed = shortcutsIn(results);
    if (granted && listed && idsOf(*listed).contains(ids()))
        bindUnlessBound();
    else
        bind();
}

void PortalShortcutSession::bindUnlessBound()
{
    // Plasma 6.1 to 6.4 binds by itself what it has known from before, and many of these versions
    // open the system settings whenever they are asked to bind. Later ones, and all other desktops,
    // want to be asked in every session, and ask the user about new ones only.
    auto* answer = new QDBusPendingCallWatcher(m_bus.asyncCall(plasmaVersionCall()), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        if (!isFirstVersion(answer->reply()))
            bind();
    });
}

void PortalShortcutSession::bind()
{
    const QString noWindow;
    request(u"BindShortcuts"_s,
            {QVariant::fromValue(QDBusObjectPath(m_handle)), QVariant::fromValue(m_shortcuts),
             noWindow},
            &PortalShortcutSession::takeBound);
}

void PortalShortcutSession::takeBound(bool granted, const QVariantMap& results)
{
    refuseAllBut(granted ? idsOf(shortcutsIn(results).value_or(m_shortcuts)) : QSet<QString>());
}

void PortalShortcutSession::refuseAllBut(const QSet<QString>& bound)
{
    const QSet<QString> others = ids() - bound;
    if (others.isEmpty())
        return;
    m_shortcuts.removeIf(
        [&](const PortalShortcut& shortcut) { return others.contains(shortcut.id); });
    Q_EMIT refused(others);
}

void PortalShortcutSession::takeClosed()
{
    if (message().service() != m_owner)
        return;
    m_handle.clear();
    refuseAllBut({});
}

void PortalShortcutSession::takeActivated(const QDBusObjectPath& session, const QString& id,
                                          qulonglong time)
{
    if (isOurs(session))
        Q_EMIT activated(id, time);
}

void PortalShortcutSession::takeDeactivated(const QDBusObjectPath& session, const QString& id,
                                            qulonglong time)
{
    if (isOurs(session))
        Q_EMIT deactivated(id, time);
}

} // namespace varno
