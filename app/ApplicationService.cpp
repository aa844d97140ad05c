#include "app/ApplicationService.h"

#include <QDBusConnection>

#include <array>
#include <utility>

namespace varno {

using namespace Qt::StringLiterals;

namespace {

using Action = ApplicationService::Action;

const QString interface = u"org.freedesktop.Application"_s;
constexpr int patience = 5000; // milliseconds

/// As the entry in the desktop's menu calls them, too.
constexpr std::array actions = {
    std::pair("toggle"_L1, Action::toggle),     std::pair("new-search"_L1, Action::newSearch),
    std::pair("settings"_L1, Action::settings), std::pair("search"_L1, Action::search),
    std::pair("quit"_L1, Action::quit),
};

const QString startupIdKey = u"desktop-startup-id"_s;
const QString activationTokenKey = u"activation-token"_s;

QVariantMap platformData(const ActivationMarks& marks)
{
    QVariantMap data;
    if (!marks.startupId.isEmpty())
        data.insert(startupIdKey, QString::fromUtf8(marks.startupId));
    if (!marks.activationToken.isEmpty())
        data.insert(activationTokenKey, QString::fromUtf8(marks.activationToken));
    return data;
}

UserAction userAction(const QVariantMap& platformData)
{
    return ActivationMarks{.startupId = platformData.value(startupIdKey).toString().toUtf8(),
                           .activationToken =
                               platformData.value(activationTokenKey).toString().toUtf8()}
        .action();
}

} // namespace

ApplicationService::ApplicationService(const QString& busName, QObject* parent)
    : QObject(parent)
    , m_busName(busName)
    , m_objectPath(u'/' + QString(busName).replace(u'.', u'/'))
{
    new ApplicationAdaptor(*this);
}

ApplicationService::Claim ApplicationService::claim(const LaunchContext& context)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return Claim::mine;
    // First the object: whoever sees the name may call at once.
    bus.registerObject(m_objectPath, this);
    if (bus.registerService(m_busName))
        return Claim::mine;
    if (handOver(context))
        return Claim::handedOver;
    // The other one may have been about to end.
    return bus.registerService(m_busName) ? Claim::mine : Claim::silent;
}

bool ApplicationService::handOver(const LaunchContext& context) const
{
    if (context.panel == LaunchContext::Panel::hidden)
        return true;
    QDBusMessage call = callOfTheOther(context);
    call.setAutoStartService(false);
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, patience);
    return reply.type() == QDBusMessage::ReplyMessage;
}

QDBusMessage ApplicationService::callOfTheOther(const LaunchContext& context) const
{
    const bool toggles = context.panel == LaunchContext::Panel::whereNeeded;
    QDBusMessage call = QDBusMessage::createMethodCall(
        m_busName, m_objectPath, interface, toggles ? u"ActivateAction"_s : u"Activate"_s);
    if (toggles)
        call << u"toggle"_s << QVariantList();
    return call << platformData(context.marks);
}

ApplicationAdaptor::ApplicationAdaptor(ApplicationService& service)
    : QDBusAbstractAdaptor(&service)
    , m_service(service)
{
}

void ApplicationAdaptor::Activate(const QVariantMap& platformData)
{
    Q_EMIT m_service.requested({.action = Action::show, .user = userAction(platformData)});
}

void ApplicationAdaptor::Open(const QStringList& /*uris*/, const QVariantMap& platformData)
{
    Activate(platformData); // there is nothing to open
}

void ApplicationAdaptor::ActivateAction(const QString& name, const QVariantList& parameter,
                                        const QVariantMap& platformData)
{
    for (const auto& [known, action] : actions)
        if (name == known)
            Q_EMIT m_service.requested({.action = action,
                                        .text = parameter.value(0).toString(),
                                        .user = userAction(platformData)});
}

} // namespace varno
