#pragma once

#include "platform/Background.h"
#include "platform/Inbox.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QString>

#include <functional>

namespace varno {

/// The way to the desktop's portal, one for the whole process: it takes the id of an application
/// from the first call only, so nobody calls it before `ready`. Main thread only.
class PortalConnection : public QObject, protected QDBusContext {
    Q_OBJECT

public:
    using Connector = std::function<QDBusConnection()>;

    static const QString service;
    static const QString path;

    /// The one on the session bus.
    static PortalConnection& shared();

    /// `connector` opens the bus, on another thread, since that may wait for it.
    explicit PortalConnection(Connector connector);
    ~PortalConnection() override;

    /// Returns at once; `ready` follows, unless it is. Starts a portal that is not running.
    void open();
    [[nodiscard]] bool isReady() const { return m_state == State::ready; }

    [[nodiscard]] const QDBusConnection& bus() const { return m_bus; }
    /// The portal's own name on the bus; empty while there is no portal, or no bus.
    [[nodiscard]] const QString& owner() const { return m_owner; }

Q_SIGNALS:
    /// There is an owner, or it is known that there is none. Again whenever another portal has
    /// come.
    void ready();
    /// The portal has left the bus, and with it all that it had made for us.
    void lost();

private Q_SLOTS:
    void takeOwner(const QString& name, const QString& before, const QString& owner);

private:
    enum class State : quint8 { closed, connecting, introducing, ready, lost };

    void watch(const QDBusConnection& bus);
    void introduce();
    void askForOwner();
    void setOwner(const QString& owner);

    Connector m_connector;
    QDBusConnection m_bus;
    QString m_owner;
    State m_state = State::closed;
    Inbox m_inbox;
    Background m_background; ///< last, so that it ends first
};

} // namespace varno
