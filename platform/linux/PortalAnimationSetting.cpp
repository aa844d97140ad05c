#include "platform/linux/PortalAnimationSetting.h"

#include "platform/linux/ProcessVisibility.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QMap>
#include <QStringList>

#include <memory>
#include <utility>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

const QString interface = u"org.freedesktop.portal.Settings"_s;
const QString gnomeSpace = u"org.gnome.desktop.interface"_s;
const QString plasmaSpace = u"org.kde.kdeglobals.KDE"_s;

using Namespaces = QMap<QString, QVariantMap>;

} // namespace

PortalAnimationSetting::PortalAnimationSetting(PortalConnection& portal)
    : m_portal(portal)
{
}

bool PortalAnimationSetting::isEnabled()
{
    if (std::exchange(m_asked, true))
        return m_gnomeWants && m_plasmaWants;
    if (m_portal.isReady()) {
        ask();
    } else {
        connect(&m_portal, &PortalConnection::ready, this, &PortalAnimationSetting::ask,
                Qt::SingleShotConnection);
        m_portal.open();
    }
    return m_gnomeWants && m_plasmaWants;
}

void PortalAnimationSetting::ask()
{
    QDBusConnection bus = m_portal.bus();
    if (!bus.isConnected())
        return;
    qRegisterMetaType<QDBusVariant>(); // a slot with a type that is not registered is not connected
    // From any sender: naming the service would wait for the bus to say who owns that name.
    bus.connect(QString(), PortalConnection::path, interface, u"SettingChanged"_s, this,
                SLOT(take(QString, QString, QDBusVariant)));
    QDBusMessage question = QDBusMessage::createMethodCall(
        PortalConnection::service, PortalConnection::path, interface, u"ReadAll"_s);
    question << QStringList{gnomeSpace, plasmaSpace};
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    const auto seen = std::make_shared<ProcessVisibility>();
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, seen] {
        takeAll(answer->reply());
        answer->deleteLater();
    });
}

void PortalAnimationSetting::takeAll(const QDBusMessage& reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != "a{sa{sv}}"_L1)
        return;
    const auto spaces = qdbus_cast<Namespaces>(reply.arguments().constFirst());
    for (auto space = spaces.cbegin(); space != spaces.cend(); ++space)
        for (auto entry = space->cbegin(); entry != space->cend(); ++entry)
            set(space.key(), entry.key(), entry.value());
}

void PortalAnimationSetting::take(const QString& space, const QString& key,
                                  const QDBusVariant& value)
{
    set(space, key, value.variant());
}

void PortalAnimationSetting::set(const QString& space, const QString& key, const QVariant& value)
{
    const bool before = isEnabled();
    bool known = false;
    if (space == gnomeSpace && key == "enable-animations"_L1) {
        m_gnomeWants = value.toBool();
    } else if (space == plasmaSpace && key == "AnimationDurationFactor"_L1) {
        const double factor = value.toDouble(&known);
        m_plasmaWants = !known || factor > 0;
    }
    if (isEnabled() != before)
        Q_EMIT changed(!before);
}

} // namespace varno
