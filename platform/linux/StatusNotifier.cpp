#include "platform/linux/StatusNotifier.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QIcon>
#include <QImage>
#include <QtEndian>

#include <array>
#include <limits>
#include <utility>

namespace varno {

using namespace Qt::StringLiterals;

namespace {

const QString watcherService = u"org.kde.StatusNotifierWatcher"_s;
const QString watcherPath = u"/StatusNotifierWatcher"_s;
const QString itemInterface = u"org.kde.StatusNotifierItem"_s;
const QString itemPath = u"/StatusNotifierItem"_s;
const QString propertiesInterface = u"org.freedesktop.DBus.Properties"_s;

/// A picture as the bus carries it: 32 bits a pixel, alpha first.
struct NotifierImage {
    int width = 0;
    int height = 0;
    QByteArray pixels{};
};

struct NotifierToolTip {
    QString iconName{};
    QList<NotifierImage> icon{};
    QString title{};
    QString text{};
};

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierImage& image)
{
    argument.beginStructure();
    argument << image.width << image.height << image.pixels;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierImage& image)
{
    argument.beginStructure();
    argument >> image.width >> image.height >> image.pixels;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierToolTip& toolTip)
{
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.icon << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierToolTip& toolTip)
{
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.icon >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

QList<NotifierImage> notifierImages(const QIcon& icon)
{
    QList<NotifierImage> images;
    for (const QSize& size : icon.availableSizes()) {
        QImage image = icon.pixmap(size, 1).toImage().convertToFormat(QImage::Format_ARGB32);
        QByteArray pixels(image.sizeInBytes(), Qt::Uninitialized);
        qToBigEndian<quint32>(image.constBits(), image.sizeInBytes() / 4, pixels.data());
        images.append({.width = image.width(), .height = image.height(), .pixels = pixels});
    }
    return images;
}

QVariantMap propertiesOf(const QIcon& icon, const QString& name)
{
    return {{u"Category"_s, u"ApplicationStatus"_s},
            {u"Id"_s, name},
            {u"Title"_s, name},
            {u"Status"_s, u"Active"_s},
            {u"WindowId"_s, 0},
            {u"IconName"_s, QString()},
            {u"IconPixmap"_s, QVariant::fromValue(notifierImages(icon))},
            {u"ToolTip"_s, QVariant::fromValue(NotifierToolTip{.title = name})},
            {u"ItemIsMenu"_s, false}};
}

/// With what introspection says of its arguments.
const QString place = uR"(<arg name="x" type="i"/><arg name="y" type="i"/>)"_s;
const std::array<std::pair<QString, QString>, 5> methods = {{
    {u"Activate"_s, place},
    {u"SecondaryActivate"_s, place},
    {u"ContextMenu"_s, place},
    {u"Scroll"_s, uR"(<arg name="delta" type="i"/><arg name="orientation" type="s"/>)"_s},
    {u"ProvideXdgActivationToken"_s, uR"(<arg name="token" type="s"/>)"_s},
}};

QDBusMessage callOfWatcher(const QString& interface, const QString& method,
                           const QVariantList& arguments)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(watcherService, watcherPath, interface, method);
    call.setAutoStartService(false);
    call.setArguments(arguments);
    return call;
}

constexpr int forever = std::numeric_limits<int>::max();

template <typename... Reply, typename Action>
void ask(const QDBusMessage& call, QObject& receiver, int patience, Action then)
{
    auto* answer = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(call, patience), &receiver);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, &receiver, [answer, then] {
        answer->deleteLater();
        then(QDBusPendingReply<Reply...>(*answer));
    });
}

NotifierArea areaOf(const QDBusPendingReply<QDBusVariant>& reply)
{
    if (reply.isValid())
        return reply.value().variant().toBool() ? NotifierArea::shown : NotifierArea::listOnly;
    const QString error = reply.error().name();
    const bool isNobody =
        error.endsWith(".ServiceUnknown"_L1) || error.endsWith(".NameHasNoOwner"_L1);
    return isNobody ? NotifierArea::none : NotifierArea::listOnly;
}

} // namespace

void askForNotifierArea(QObject& receiver, int patience,
                        const std::function<void(NotifierArea)>& answer)
{
    if (!QDBusConnection::sessionBus().isConnected()) { // which its calls would not tell
        QMetaObject::invokeMethod(
            &receiver, [answer] { answer(NotifierArea::none); }, Qt::QueuedConnection);
        return;
    }
    ask<QDBusVariant>(callOfWatcher(propertiesInterface, u"Get"_s,
                                    {watcherService, u"IsStatusNotifierHostRegistered"_s}),
                      receiver, patience, [answer](const QDBusPendingReply<QDBusVariant>& reply) {
                          answer(areaOf(reply));
                      });
}

StatusNotifier::StatusNotifier(const QIcon& icon, const QString& name)
    : m_bus(QDBusConnection::sessionBus())
    , m_watcher(watcherService, m_bus)
{
    qDBusRegisterMetaType<NotifierImage>();
    qDBusRegisterMetaType<QList<NotifierImage>>();
    qDBusRegisterMetaType<NotifierToolTip>();
    m_properties = propertiesOf(icon, name);
    m_bus.registerVirtualObject(itemPath, this);
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) {
                if (owner.isEmpty()) // what is sent to nobody may reach the next one
                    Q_EMIT areaFound(NotifierArea::none);
                else
                    meetWatcher();
            });
    for (const QString& change :
         {u"StatusNotifierHostRegistered"_s, u"StatusNotifierHostUnregistered"_s})
        m_bus.connect({}, watcherPath, watcherService, change, this, SLOT(askForHost()));
    meetWatcher();
}

StatusNotifier::~StatusNotifier()
{
    m_bus.unregisterObject(itemPath);
}

void StatusNotifier::meetWatcher()
{
    m_isAnnounced = false;
    askForHost();
}

void StatusNotifier::askForHost()
{
    if (!m_isAnnounced)
        announce();
    askForNotifierArea(*this, forever, [this](NotifierArea area) { Q_EMIT areaFound(area); });
}

/// GNOME's shell is looked for first: its answer comes before a question of a host.
void StatusNotifier::announce()
{
    m_isAnnounced = true;
    QDBusMessage owner =
        QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                       u"org.freedesktop.DBus"_s, u"GetNameOwner"_s);
    owner << u"org.gnome.Shell"_s;
    ask<QString>(owner, *this, forever, [this](const QDBusPendingReply<QString>& reply) {
        m_gnomeShell = reply.isValid() ? reply.value() : QString();
    });
    ask<>(callOfWatcher(watcherService, u"RegisterStatusNotifierItem"_s, {m_bus.baseService()}),
          *this, forever,
          [this](const QDBusPendingReply<>& reply) { m_isAnnounced = reply.isValid(); });
}

QString StatusNotifier::introspect(const QString& /*path*/) const
{
    QString text = uR"(<interface name="%1">)"_s.arg(itemInterface);
    for (const auto& [method, arguments] : methods)
        text += uR"(<method name="%1">%2</method>)"_s.arg(method, arguments);
    for (auto property = m_properties.cbegin(); property != m_properties.cend(); ++property)
        text += uR"(<property name="%1" type="%2" access="read"/>)"_s.arg(
            property.key(),
            QLatin1StringView(QDBusMetaType::typeToSignature(property->metaType())));
    return text + u"</interface>"_s;
}

bool StatusNotifier::handleMessage(const QDBusMessage& call, const QDBusConnection& bus)
{
    const QString method = call.member();
    const QVariantList arguments = call.arguments();
    if (call.interface() == propertiesInterface) {
        const QVariantMap properties = propertiesFor(call.service());
        if (method == "GetAll"_L1)
            return bus.send(call.createReply(properties));
        const QVariant value = properties.value(arguments.value(1).toString());
        return bus.send(method == "Get"_L1 && value.isValid()
                            ? call.createReply(QVariant::fromValue(QDBusVariant(value)))
                            : call.createErrorReply(QDBusError::UnknownProperty, method));
    }
    if (method == "Activate"_L1 || method == "SecondaryActivate"_L1 || method == "ContextMenu"_L1) {
        takeClick(call);
        return true;
    }
    if (method == "ProvideXdgActivationToken"_L1)
        m_token = arguments.value(0).toString().toUtf8();
    else if (method != "Scroll"_L1)
        return false;
    return bus.send(call.createReply());
}

/// GNOME's extension for such icons wants double clicks once a click has succeeded, but not after
/// an error. Other hosts would ask for a menu then.
void StatusNotifier::takeClick(const QDBusMessage& call)
{
    m_bus.send(call.service() == m_gnomeShell
                   ? call.createErrorReply(QDBusError::Failed, u"The icon has been clicked."_s)
                   : call.createReply());
    Q_EMIT activated({.token = std::exchange(m_token, {})});
}

/// The same extension shows only what has a menu. For others there must be none: they would open
/// an empty one in place of a secondary click.
QVariantMap StatusNotifier::propertiesFor(const QString& caller) const
{
    QVariantMap properties = m_properties;
    if (caller == m_gnomeShell)
        properties.insert(u"Menu"_s, QVariant::fromValue(QDBusObjectPath(u"/MenuBar"_s)));
    return properties;
}

} // namespace varno
