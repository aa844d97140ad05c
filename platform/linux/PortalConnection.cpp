#include "platform/linux/PortalConnection.h"

#include "platform/linux/ProcessVisibility.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>

#include <memory>
#include <utility>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

/// The name of the desktop file, which the portal looks for.
const QString applicationId = u"com.kelbrin.varno"_s;

} // namespace

const QString PortalConnection::service = u"org.freedesktop.portal.Desktop"_s;
const QString PortalConnection::path = u"/org/freedesktop/portal/desktop"_s;

PortalConnection& PortalConnection::shared()
{
    static PortalConnection connection(&QDBusConnection::sessionBus);
    return connection;
}

PortalConnection::PortalConnection(Connector connector)
    : DesktopService(service, std::move(connector))
{
}

void PortalConnection::introduce()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        service, path, u"org.freedesktop.host.portal.Registry"_s, u"Register"_s);
    call << applicationId << QVariantMap();
    auto* answer = new QDBusPendingCallWatcher(bus().asyncCall(call), this);
    const auto seen = std::make_shared<ProcessVisibility>();
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, seen] {
        // Whatever it says: older portals know no such call.
        answer->deleteLater();
        askForOwner();
    });
}

} // namespace varno
