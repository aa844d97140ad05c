#pragma once

#include <QDBusContext>
#include <QObject>
#include <QStringList>

#include <chrono>
#include <optional>

namespace varno::bench {

using Clock = std::chrono::steady_clock;

/// The host of a status area, on the session bus: to it programs make their icons known. It asks an
/// icon for all there is to know of it, as a host does, and shows none.
class StatusWatcher final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)

public:
    /// Takes the name of the host. Whether it has it: `isHostRegistered`.
    StatusWatcher();

    [[nodiscard]] bool isHostRegistered() const { return m_isOnBus; }
    [[nodiscard]] static int protocolVersion() { return 0; }
    [[nodiscard]] QStringList items() const { return m_items; }

    /// Forgets the items there were.
    void reset();

    /// Runs the event loop until an item came after `reset`; when it came. Nothing after
    /// `patience`.
    [[nodiscard]] std::optional<Clock::time_point> waitForItem(std::chrono::milliseconds patience);

public Q_SLOTS:
    // Named by the interface.
    void RegisterStatusNotifierItem(const QString& service);
    void RegisterStatusNotifierHost(const QString& /*service*/) {}

Q_SIGNALS:
    void StatusNotifierItemRegistered(const QString& service);

private:
    bool m_isOnBus = false;
    QStringList m_items;
    std::optional<Clock::time_point> m_itemCame;
};

} // namespace varno::bench
