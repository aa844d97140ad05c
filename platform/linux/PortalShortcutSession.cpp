#include "platform/linux/PortalShortcutSession.h"

#include "platform/linux/PortalConnection.h"
#include "platform/linux/PortalRequest.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

const QString shortcutsInterface = u"org.freedesktop.portal.GlobalShortcuts"_s;
const QString sessionInterface = u"org.freedesktop.portal.Session"_s;

void close(const QDBusConnection& bus, const QString& owner, const QString& handle)
{
    bus.send(QDBusMessage::createMethodCall(owner, handle, sessionInterface, u"Close"_s));
}

/// Of a press or a release: which shortcut, and when.
QString idIn(const QDBusMessage& signal)
{
    return signal.arguments().value(1).toString();
}
quint64 timeIn(const QDBusMessage& signal)
{
    return signal.arguments().value(2).toULongLong();
}

} // namespace

PortalShortcutSession::PortalShortcutSession(PortalConnection& portal, PortalShortcut shortcut)
    : m_portal(portal)
    , m_bus(portal.bus())
    , m_owner(portal.owner())
    , m_shortcut(std::move(shortcut))
{
    listen(u"Activated"_s, SLOT(takeActivated(QDBusMessage)));
    listen(u"Deactivated"_s, SLOT(takeDeactivated(QDBusMessage)));
    listen(u"ShortcutsChanged"_s, SLOT(takeChange(QDBusMessage)));
    create(portal);
}

PortalShortcutSession::~PortalShortcutSession()
{
    if (!m_handle.isEmpty())
        close(m_bus, m_owner, m_handle);
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

void PortalShortcutSession::listen(const QString& signal, const char* slot)
{
    m_bus.connect(QString(), PortalConnection::path, shortcutsInterface, signal, this, slot);
}

bool PortalShortcutSession::isOurs(const QDBusMessage& signal) const
{
    return signal.service() == m_owner &&
           signal.arguments().value(0).value<QDBusObjectPath>().path() == m_handle;
}

void PortalShortcutSession::takeSession(const QString& handle)
{
    if (handle.isEmpty()) {
        end();
        return;
    }
    m_handle = handle;
    m_bus.connect(QString(), m_handle, sessionInterface, u"Closed"_s, this,
                  SLOT(takeClosed(QDBusMessage)));
    bind();
}

void PortalShortcutSession::bind()
{
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    const QString noWindow;
    auto* request = new PortalRequest(m_portal, this);
    connect(request, &PortalRequest::answered, this, &PortalShortcutSession::takeBound);
    request->send(shortcutsInterface, u"BindShortcuts"_s,
                  {QVariant::fromValue(QDBusObjectPath(m_handle)),
                   QVariant::fromValue(QList<PortalShortcut>{m_shortcut}), noWindow});
}

void PortalShortcutSession::takeBound(bool granted, const QVariantMap& results)
{
    const auto bound = shortcutsIn(results.value(u"shortcuts"_s));
    if (!granted || (bound && !take(*bound)))
        end();
    else if (!bound)
        Q_EMIT answered({});
}

bool PortalShortcutSession::take(const QList<PortalShortcut>& shortcuts)
{
    const auto ours =
        std::find_if(shortcuts.begin(), shortcuts.end(), [this](const PortalShortcut& shortcut) {
            return shortcut.id == m_shortcut.id;
        });
    if (ours == shortcuts.end())
        return false;
    const QVariant trigger = ours->properties.value(u"trigger_description"_s);
    Q_EMIT answered({.trigger = trigger.toString().trimmed()});
    return true;
}

void PortalShortcutSession::end()
{
    if (const QString handle = std::exchange(m_handle, {}); !handle.isEmpty())
        close(m_bus, m_owner, handle);
    Q_EMIT answered({.isBound = false});
}

void PortalShortcutSession::takeClosed(const QDBusMessage& signal)
{
    if (signal.service() != m_owner)
        return;
    m_handle.clear();
    end();
}

void PortalShortcutSession::takeChange(const QDBusMessage& signal)
{
    if (isOurs(signal))
        take(shortcutsIn(signal.arguments().value(1)).value_or(QList<PortalShortcut>()));
}

void PortalShortcutSession::takeActivated(const QDBusMessage& signal)
{
    if (isOurs(signal) && idIn(signal) == m_shortcut.id)
        Q_EMIT pressed(timeIn(signal));
}

void PortalShortcutSession::takeDeactivated(const QDBusMessage& signal)
{
    if (isOurs(signal) && idIn(signal) == m_shortcut.id)
        Q_EMIT released(timeIn(signal));
}

DesktopHotKeyEvents::Ask portalShortcuts(PortalConnection& portal, const Keyboard& keyboard)
{
    return [&portal, &keyboard](const DesktopHotKeyEvents::Wish& wish) {
        return std::make_unique<PortalShortcutSession>(
            portal, portalShortcut(wish.carbonKeyCode, wish.carbonModifiers, keyboard));
    };
}

} // namespace varno
