#include "platform/linux/PortalRequest.h"

#include "platform/linux/PortalConnection.h"
#include "platform/linux/ProcessVisibility.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>

#include <memory>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

const QString requestInterface = u"org.freedesktop.portal.Request"_s;

/// Where the portal makes the object of a call, known before the call so that no answer is missed.
QString requestPath(const QDBusConnection& bus, const QString& token)
{
    QString sender = bus.baseService();
    sender.remove(u':').replace(u'.', u'_');
    return u"%1/request/%2/%3"_s.arg(PortalConnection::path, sender, token);
}

} // namespace

PortalRequest::PortalRequest(const PortalConnection& portal, QObject* parent)
    : QObject(parent)
    , m_bus(portal.bus())
    , m_owner(portal.owner())
{
}

PortalRequest::~PortalRequest()
{
    if (m_objectPath.isEmpty())
        return;
    m_bus.send(QDBusMessage::createMethodCall(m_owner, m_objectPath, requestInterface, u"Close"_s));
}

QString PortalRequest::newToken()
{
    static int last = 0;
    return u"varno%1"_s.arg(++last);
}

void PortalRequest::send(const QString& interface, const QString& method,
                         const QVariantList& arguments, QVariantMap options)
{
    const QString token = newToken();
    options.insert(u"handle_token"_s, token);
    m_objectPath = requestPath(m_bus, token);
    m_bus.connect(QString(), m_objectPath, requestInterface, u"Response"_s, this,
                  SLOT(takeResponse(uint, QVariantMap)));
    QDBusMessage call =
        QDBusMessage::createMethodCall(m_owner, PortalConnection::path, interface, method);
    call.setArguments(QVariantList(arguments) << options);
    auto* reply = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    const auto seen = std::make_shared<ProcessVisibility>();
    connect(reply, &QDBusPendingCallWatcher::finished, this, [this, reply, seen] {
        reply->deleteLater();
        if (reply->isError() && !m_objectPath.isEmpty()) // else it is answered already
            answer(false, {});
    });
}

void PortalRequest::takeResponse(uint response, const QVariantMap& results)
{
    if (message().service() == m_owner && !m_objectPath.isEmpty())
        answer(response == 0, results);
}

void PortalRequest::answer(bool granted, const QVariantMap& results)
{
    m_objectPath.clear();
    deleteLater();
    Q_EMIT answered(granted, results);
}

} // namespace varno
