#include "platform/StatusItem.h"
#include "platform/linux/TrayStatusItem.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include <utility>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

constexpr int patience = 2000; // milliseconds, which no area that works takes

} // namespace

void becomeAccessory() {} // windows say for themselves in which lists they are

void askForStatusArea(QObject& context, std::function<void(bool)> answer)
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) { // which its calls would not tell
        QMetaObject::invokeMethod(
            &context, [answer = std::move(answer)] { answer(hasTrayOnX11()); },
            Qt::QueuedConnection);
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(
        u"org.kde.StatusNotifierWatcher"_s, u"/StatusNotifierWatcher"_s,
        u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call << u"org.kde.StatusNotifierWatcher"_s << u"IsStatusNotifierHostRegistered"_s;
    call.setAutoStartService(false);
    auto* reply = new QDBusPendingCallWatcher(bus.asyncCall(call, patience), &context);
    QObject::connect(
        reply, &QDBusPendingCallWatcher::finished, &context, [reply, answer = std::move(answer)] {
            reply->deleteLater();
            const QDBusPendingReply<QDBusVariant> host = *reply;
            answer((host.isValid() && host.value().variant().toBool()) || hasTrayOnX11());
        });
}

} // namespace varno
