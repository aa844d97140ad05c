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
    /// What the watcher says when it is asked whether there is a host to show its items.
    enum class Answer { yes, no, failure, none };

    explicit StatusHost(Answer answer = Answer::yes)
        : m_answer(answer)
        , m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, m_connection))
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
    /// As a click does, with a token of the desktop; whether the item has taken it.
    [[nodiscard]] bool activate(const QString& name, const QString& method = u"Activate"_s) const
    {
        static_cast<void>(call(name, item, u"ProvideXdgActivationToken"_s, {u"a \"b\"_TIME7"_s}));
        return finished(call(name, item, method, {1590, 10})).type() == QDBusMessage::ReplyMessage;
    }

    /// The host behind the watcher comes or goes.
    void setAnswer(Answer answer)
    {
        m_answer = answer;
        m_bus.send(QDBusMessage::createSignal(
            u"/StatusNotifierWatcher"_s, u"org.kde.StatusNotifierWatcher"_s,
            answer == Answer::yes ? u"StatusNotifierHostRegistered"_s
                                  : u"StatusNotifierHostUnregistered"_s));
    }
    /// Is the shell of GNOME as well.
    void becomeGnomeShell() { m_bus.registerService(u"org.gnome.Shell"_s); }

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
            static_cast<void>(ask(m_items.constLast())); // as a host does, to show it
            onItem();
            return connection.send(message.createReply());
        }
        const QVariant answer = QVariant::fromValue(QDBusVariant(m_answer == Answer::yes));
        return message.member() == u"Get"_s && m_answer != Answer::failure &&
               (m_answer == Answer::none || connection.send(message.createReply(answer)));
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
    [[nodiscard]] QDBusPendingCall ask(const QString& name) const
    {
        return call(name, u"org.freedesktop.DBus.Properties"_s, u"GetAll"_s, {item});
    }
    static QDBusMessage finished(const QDBusPendingCall& pending)
    {
        static_cast<void>(QTest::qWaitFor([&] { return pending.isFinished(); }, patience));
        return pending.reply();
    }

    Answer m_answer;
    QString m_connection = QUuid::createUuid().toString();
    QDBusConnection m_bus;
    bool m_isRegistered;
    QStringList m_items;
};

} // namespace varno
