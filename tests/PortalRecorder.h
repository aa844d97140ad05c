#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QStringList>
#include <QUuid>

namespace varno {

using namespace Qt::StringLiterals;

/// A desktop's portal that only notes what it is called for, and does none of it.
class PortalRecorder final : public QDBusVirtualObject {
public:
    /// On a bus given by its kind or its address.
    template <typename Bus>
    explicit PortalRecorder(const Bus& bus)
        : m_bus(QDBusConnection::connectToBus(bus, m_connection))
        , m_isRegistered(m_bus.registerVirtualObject(u"/org/freedesktop/portal/desktop"_s, this) &&
                         m_bus.registerService(u"org.freedesktop.portal.Desktop"_s))
    {
    }
    ~PortalRecorder() override { QDBusConnection::disconnectFromBus(m_connection); }
    Q_DISABLE_COPY_MOVE(PortalRecorder)

    [[nodiscard]] bool isRegistered() const { return m_isRegistered; }
    /// Methods by name, and a registration with what was registered.
    [[nodiscard]] QStringList calls() const { return m_calls; }

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override
    {
        const bool registers = message.member() == u"Register"_s;
        m_calls << message.member();
        if (registers)
            m_calls.last() += u' ' + message.arguments().value(0).toString();
        return bus.send(registers ? message.createReply()
                                  : message.createErrorReply(QDBusError::NotSupported, {}));
    }

private:
    QString m_connection = QUuid::createUuid().toString();
    QDBusConnection m_bus;
    bool m_isRegistered;
    QStringList m_calls;
};

} // namespace varno
