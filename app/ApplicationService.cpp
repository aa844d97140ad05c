#include "app/ApplicationService.h"

#include <QDBusConnection>
#include <QDBusMessage>

namespace varno {

using namespace Qt::StringLiterals;

namespace {

const QString interface = u"org.freedesktop.Application"_s;
const QString toggleAction = u"toggle"_s;
constexpr int patience = 5000; // milliseconds

} // namespace

ApplicationService::ApplicationService(const QString& busName, QObject* parent)
    : QObject(parent)
    , m_busName(busName)
    , m_objectPath(u'/' + QString(busName).replace(u'.', u'/'))
{
    new ApplicationAdaptor(*this);
}

ApplicationService::Claim ApplicationService::claim()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return Claim::mine;
    // First the object: whoever sees the name may call at once.
    bus.registerObject(m_objectPath, this);
    return bus.registerService(m_busName) ? Claim::mine : toggleTheOther();
}

ApplicationService::Claim ApplicationService::toggleTheOther() const
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(m_busName, m_objectPath, interface, u"ActivateAction"_s);
    call << toggleAction << QVariantList() << QVariantMap();
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, patience);
    return reply.type() == QDBusMessage::ReplyMessage ? Claim::toggled : Claim::silent;
}

ApplicationAdaptor::ApplicationAdaptor(ApplicationService& service)
    : QDBusAbstractAdaptor(&service)
    , m_service(service)
{
}

void ApplicationAdaptor::Activate(const QVariantMap& /*platformData*/)
{
    Q_EMIT m_service.showRequested();
}

void ApplicationAdaptor::Open(const QStringList& /*uris*/, const QVariantMap& platformData)
{
    Activate(platformData); // there is nothing to open
}

void ApplicationAdaptor::ActivateAction(const QString& name, const QVariantList& /*parameter*/,
                                        const QVariantMap& /*platformData*/)
{
    if (name == toggleAction)
        Q_EMIT m_service.toggleRequested();
}

} // namespace varno
