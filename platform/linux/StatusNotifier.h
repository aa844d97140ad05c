#pragma once

#include "platform/StatusItem.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusVirtualObject>
#include <QVariantMap>

#include <functional>

class QIcon;

namespace varno {

/// Who there is on the session bus for icons.
enum class NotifierArea : quint8 {
    none,     ///< nobody, or no bus
    listOnly, ///< a watcher that lists them, but no host that shows them
    shown,    ///< a host
};

/// Asks the watcher. The answer comes from the event loop, once, unless the receiver is gone by
/// then; `patience` is in milliseconds.
void askForNotifierArea(QObject& receiver, int patience,
                        const std::function<void(NotifierArea)>& answer);

/// The icon as an object on the session bus (org.kde.StatusNotifierItem), which the hosts of
/// desktops show. It announces itself to whoever keeps the list of such icons, before there is a
/// host as well, and waits for no answer. It has no menu: every click is the same.
class StatusNotifier final : public QDBusVirtualObject {
    Q_OBJECT

public:
    StatusNotifier(const QIcon& icon, const QString& name);
    ~StatusNotifier() override;
    Q_DISABLE_COPY_MOVE(StatusNotifier)

    [[nodiscard]] QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override;

Q_SIGNALS:
    void activated(const varno::UserAction& action);
    /// Who may show the icon. Told first when it is known, which may be never.
    void areaFound(varno::NotifierArea area);

private Q_SLOTS:
    void askForHost();

private:
    void announce();
    void meetWatcher();
    void takeClick(const QDBusMessage& call);
    [[nodiscard]] QVariantMap propertiesFor(const QString& caller) const;

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    QVariantMap m_properties;
    QString m_gnomeShell; ///< its own name on the bus, where it runs
    QByteArray m_token;   ///< of the click that follows
    bool m_isAnnounced = false;
};

} // namespace varno
