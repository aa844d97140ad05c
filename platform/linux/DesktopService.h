#pragma once

#include "platform/Background.h"
#include "platform/Inbox.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QString>

#include <functional>

namespace varno {

/// A service of the desktop on the session bus, and who owns its name. Main thread only.
class DesktopService : public QObject, protected QDBusContext {
    Q_OBJECT

public:
    using Connector = std::function<QDBusConnection()>;

    /// `connector` opens the bus, on another thread, since that may wait for it.
    explicit DesktopService(QString name, Connector connector = &QDBusConnection::sessionBus);
    ~DesktopService() override;

    /// Returns at once; `ready` follows, unless it is.
    void open();
    [[nodiscard]] bool isReady() const { return m_state == State::ready; }

    [[nodiscard]] const QDBusConnection& bus() const { return m_bus; }
    /// The service's own name on the bus; empty while there is no service, or no bus.
    [[nodiscard]] const QString& owner() const { return m_owner; }

Q_SIGNALS:
    /// There is an owner, or it is known that there is none. Again whenever another owner has come,
    /// and when the bus has gone.
    void ready();
    /// The service has left the bus, and with it all that it had made for us.
    void lost();

protected:
    /// What has to be said before anything else, and to each owner; calls `askForOwner` at its end.
    virtual void introduce() { askForOwner(); }
    void askForOwner();

private Q_SLOTS:
    void takeOwner(const QString& name, const QString& before, const QString& owner);
    void takeLossOfBus() { setOwner(QString()); }

private:
    enum class State : quint8 { closed, connecting, introducing, ready, lost };

    void watch(const QDBusConnection& bus);
    void startIntroduction();
    void setOwner(const QString& owner);

    QString m_name;
    Connector m_connector;
    QDBusConnection m_bus;
    QString m_owner;
    State m_state = State::closed;
    Inbox m_inbox;
    Background m_background; ///< last, so that it ends first
};

} // namespace varno
