#pragma once

#include "tests/Patience.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QStringList>
#include <QUuid>
#include <QVariantMap>

#include <functional>

namespace varno {

using namespace Qt::StringLiterals;

/// The status area of a desktop, for as long as this lives: the one on the session bus that the
/// items of programs announce themselves to, and that tells them of clicks. It shows none.
class StatusHost final : public QDBusVirtualObject {
public:
    StatusHost()
        : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, m_connection))
        , m_isRegistered(m_bus.registerVirtualObject(u"/StatusNotifierWatcher"_s, this) &&
                         m_bus.registerService(u"org.kde.StatusNotifierWatcher"_s))
    {
    }
    ~StatusHost() override { QDBusConnection::disconnectFromBus(m_connection); }
    Q_DISABLE_COPY_MOVE(StatusHost)

    /// Called for each item that announces itself.
    std::function<void()> onItem = [] {};

    /// Whether it is the one.
    [[nodiscard]] bool isRegistered() const { return m_isRegistered; }
    /// The names of those that have announced themselves, in that order.
    [[nodiscard]] const QStringList& items() const { return m_items; }

    /// What an item says of itself.
    [[nodiscard]] QVariantMap properties(const QString& name) const
    {
        return qdbus_cast<QVariantMap>(finished(ask(name)).arguments().value(0));
    }
    /// As a click does; whether the item has taken it.
    [[nodiscard]] bool activate(const QString& name) const
    {
        return finished(call(name, item, u"Activate"_s, {1590, 10})).type() ==
               QDBusMessage::ReplyMessage;
    }

    [[nodiscard]] QString introspect(const QString& /*path*/) const override
    {
        return QLatin1StringView(
            R"(<interface name="org.kde.StatusNotifierWatcher">)"
            R"(<method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>)"
            R"(<property name="IsStatusNotifierHostRegistered" type="b" access="read"/>)"
            R"(</interface>)");
    }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        if (message.member() == u"RegisterStatusNotifierItem"_s) {
            const QString name = message.arguments().value(0).toString();
            m_items.append(name.startsWith(u'/') ? message.service() : name);
            ask(m_items.constLast()); // as a host does, which wants to show it
            onItem();
            return connection.send(message.createReply());
        }
        return message.member() == u"Get"_s && // whether it is registered
               connection.send(message.createReply(QVariant::fromValue(QDBusVariant(true))));
    }

private:
    static inline const QString item = u"org.kde.StatusNotifierItem"_s;

    [[nodiscard]] QDBusPendingCall call(const QString& name, const QString& interface,
                                        const QString& method, const QVariantList& arguments) const
    {
        QDBusMessage message =
            QDBusMessage::createMethodCall(name, u"/StatusNotifierItem"_s, interface, method);
        message.setArguments(arguments);
        return m_bus.asyncCall(message);
    }
    QDBusPendingCall ask(const QString& name) const
    {
        return call(name, u"org.freedesktop.DBus.Properties"_s, u"GetAll"_s, {item});
    }
    static QDBusMessage finished(const QDBusPendingCall& pending)
    {
        static_cast<void>(QTest::qWaitFor([&] { return pending.isFinished(); }, patience));
        return pending.reply();
    }

    QString m_connection = QUuid::createUuid().toString();
    QDBusConnection m_bus;
    bool m_isRegistered;
    QStringList m_items;
};

} // namespace varno
