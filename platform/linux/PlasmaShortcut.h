#pragma once

#include "platform/linux/DesktopHotKeyEvents.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QStringList>

class QDBusMessage;

namespace varno {

class Keyboard;

/// Four keys pressed one after the other, as Qt encodes them; a place without one is 0.
struct PlasmaKeys {
    QList<int> keys;
};

QDBusArgument& operator<<(QDBusArgument& argument, const PlasmaKeys& row);
const QDBusArgument& operator>>(const QDBusArgument& argument, PlasmaKeys& row);

/// A shortcut of Plasma's own service, which the user finds in the system settings. What is chosen
/// there goes before what we ask for, but for a wish that is new.
class PlasmaShortcut final : public DesktopShortcut {
    Q_OBJECT

public:
    static const QString service;

    /// `plasma` has an owner.
    PlasmaShortcut(const DesktopService& plasma, const DesktopHotKeyEvents::Wish& wish,
                   const Keyboard& keyboard);
    /// Sets it inactive: the settings keep it, and the key is free.
    ~PlasmaShortcut() override;

    void setPaused(bool paused) override;

private Q_SLOTS:
    void takeChange(const QDBusMessage& signal);
    void takePressed(const QDBusMessage& signal);
    void takeReleased(const QDBusMessage& signal);

private:
    void listen(const QString& path, const QString& interface, const QString& signal,
                const char* slot);
    [[nodiscard]] QDBusMessage call(const QString& method) const;
    void assign(uint flags);
    void take(const QVariant& argument);
    [[nodiscard]] bool isOurs(const QDBusMessage& signal) const;

    QDBusConnection m_bus;
    QString m_owner;
    QStringList m_action; ///< as the service names it: ids of program and action, then their titles
    int m_key;            ///< as Qt encodes it with its modifiers; 0 if Qt has no such key
};

/// Asks that service. Both outlive what is returned.
[[nodiscard]] DesktopHotKeyEvents::Ask plasmaShortcuts(DesktopService& plasma,
                                                       const Keyboard& keyboard);

} // namespace varno
