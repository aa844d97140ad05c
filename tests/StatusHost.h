#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVirtualObject>
#include <QPoint>
#include <QStringList>
#include <QTest>
#include <QUuid>
#include <QVariantMap>

namespace varno {

using namespace Qt::StringLiterals;

/// The status area of a desktop, for as long as this lives: the one on the session bus that the
/// items of programs announce themselves to, and that tells them of clicks.
class StatusHost final : public QDBusVirtualObject {
public:
    StatusHost()
        : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, m_connection))
        , m_isRegistered(m_bus.registerVirtualObject(u"/StatusNotifierWatcher"_s, this) &&
                         m_bus.registerService(watcher))
    {
    }
    ~StatusHost() override { QDBusConnection::disconnectFromBus(m_connection); }
    Q_DISABLE_COPY_MOVE(StatusHost)

    /// Whether it is the one.
    [[nodiscard]] bool isRegistered() const { return m_isRegistered; }

    /// The names of those that have announced themselves, in that order.
    [[nodiscard]] const QStringList& items() const { return m_items; }

    /// What an item says of itself.
    [[nodiscard]] QVariantMap properties(const QString& name) const
    {
        const QDBusMessage reply =
            call(name, u"org.freedesktop.DBus.Properties"_s, u"GetAll"_s, {item});
        return qdbus_cast<QVariantMap>(reply.arguments().value(0));
    }

    /// As a click does; whether the item has taken it.
    [[nodiscard]] bool activate(const QString& name) const
    {
        constexpr QPoint place(1590, 10);
        return call(name, item, u"Activate"_s, {place.x(), place.y()}).type() ==
               QDBusMessage::ReplyMessage;
    }

    [[nodiscard]] QString introspect(const QString& /*path*/) const override
    {
        return QStringLiteral(
            R"(<interface name="org.kde.StatusNotifierWatcher">)"
            R"(<method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>)"
            R"(<property name="RegisteredStatusNotifierItems" type="as" access="read"/>)"
            R"(<property name="IsStatusNotifierHostRegistered" type="b" access="read"/>)"
            R"(<property name="ProtocolVersion" type="i" access="read"/></interface>)");
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        if (message.member() == u"RegisterStatusNotifierItem"_s) {
            m_items.append(message.arguments().value(0).toString());
            return connection.send(message.createReply());
        }
        if (message.member() == u"Get"_s) {
            const QVariant value = property(message.arguments().value(1).toString());
            return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(value))));
        }
        return false;
    }

private:
    static inline const QString watcher = u"org.kde.StatusNotifierWatcher"_s;
    static inline const QString item = u"org.kde.StatusNotifierItem"_s;

    [[nodiscard]] QVariant property(const QString& name) const
    {
        if (name == u"RegisteredStatusNotifierItems"_s)
            return m_items;
        if (name == u"ProtocolVersion"_s)
            return 0;
        return true; // IsStatusNotifierHostRegistered
    }

    [[nodiscard]] QDBusMessage call(const QString& name, const QString& interface,
                                    const QString& method, const QVariantList& arguments) const
    {
        QDBusMessage message =
            QDBusMessage::createMethodCall(name, u"/StatusNotifierItem"_s, interface, method);
        message.setArguments(arguments);
        const QDBusPendingCall pending = m_bus.asyncCall(message);
        static_cast<void>(QTest::qWaitFor([&] { return pending.isFinished(); }, patience));
        return pending.reply();
    }

    QString m_connection = QUuid::createUuid().toString();
    QDBusConnection m_bus;
    bool m_isRegistered;
    QStringList m_items;
};

} // namespace varno
