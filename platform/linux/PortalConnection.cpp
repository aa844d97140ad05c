#include "platform/linux/PortalConnection.h"

#include "platform/linux/ProcessVisibility.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <memory>
#include <utility>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

/// The name of the desktop file, which the portal looks for.
const QString applicationId = u"com.kelbrin.varno"_s;

const QString busName = u"org.freedesktop.DBus"_s;
const QString busPath = u"/org/freedesktop/DBus"_s;

} // namespace

const QString PortalConnection::service = u"org.freedesktop.portal.Desktop"_s;
const QString PortalConnection::path = u"/org/freedesktop/portal/desktop"_s;

PortalConnection& PortalConnection::shared()
{
    static PortalConnection connection(&QDBusConnection::sessionBus);
    return connection;
}

PortalConnection::PortalConnection(Connector connector)
    : m_connector(std::move(connector))
    , m_bus(QString())
{
}

PortalConnection::~PortalConnection() = default;

void PortalConnection::open()
{
    if (m_state == State::lost)
        introduce();
    if (m_state != State::closed)
        return;
    m_state = State::connecting;
    // The first use of a bus waits for it, and may even start one.
    const bool started = m_background.start(
        [this, address = m_inbox.address(), connector = m_connector](const std::stop_token&) {
            address.send([this, bus = connector()] { watch(bus); });
        });
    if (!started)
        m_inbox.address().send([this] { setOwner(QString()); });
}

void PortalConnection::watch(const QDBusConnection& bus)
{
    m_bus = bus;
    if (!m_bus.isConnected()) {
        setOwner(QString());
        return;
    }
    // From any sender: naming one would wait for the bus to say who owns that name, here as in all
    // that listens to the portal.
    m_bus.connect(QString(), busPath, busName, u"NameOwnerChanged"_s, {service}, QString(), this,
                  SLOT(takeOwner(QString, QString, QString)));
    introduce();
}

void PortalConnection::introduce()
{
    m_state = State::introducing;
    QDBusMessage call = QDBusMessage::createMethodCall(
        service, path, u"org.freedesktop.host.portal.Registry"_s, u"Register"_s);
    call << applicationId << QVariantMap();
    auto* answer = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    const auto seen = std::make_shared<ProcessVisibility>();
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, seen] {
        // Whatever it says: older portals know no such call.
        answer->deleteLater();
        askForOwner();
    });
}

void PortalConnection::askForOwner()
{
    // Not the sender of a reply, which is empty in some versions of Qt.
    QDBusMessage call =
        QDBusMessage::createMethodCall(busName, busPath, busName, u"GetNameOwner"_s);
    call << service;
    auto* answer = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<QString> owner = *answer;
        setOwner(owner.isValid() ? owner.value() : QString());
    });
}

void PortalConnection::setOwner(const QString& owner)
{
    m_owner = owner;
    m_state = State::ready;
    Q_EMIT ready();
}

void PortalConnection::takeOwner(const QString& /*name*/, const QString& /*before*/,
                                 const QString& owner)
{
    if (message().service() != busName || m_state == State::introducing || owner == m_owner)
        return; // the last two: our own call has started it
    if (!owner.isEmpty()) {
        introduce();
        return;
    }
    m_owner.clear();
    m_state = State::lost;
    Q_EMIT lost();
}

} // namespace varno
