#pragma once

#include "platform/linux/DesktopHotKeyEvents.h"
#include "platform/linux/PortalShortcut.h"

#include <QDBusConnection>

class QDBusMessage;

namespace varno {

class Keyboard;
class PortalConnection;

/// A shortcut of the desktop's portal, which asks the user: in a session of its own, since bound
/// ones cannot be changed.
class PortalShortcutSession final : public DesktopShortcut {
    Q_OBJECT

public:
    /// Begins at once. `portal` has an owner, and outlives it.
    PortalShortcutSession(PortalConnection& portal, PortalShortcut shortcut);
    ~PortalShortcutSession() override;

private Q_SLOTS:
    void takeClosed(const QDBusMessage& signal);
    void takeActivated(const QDBusMessage& signal);
    void takeDeactivated(const QDBusMessage& signal);
    void takeChange(const QDBusMessage& signal);

private:
    void create(PortalConnection& portal);
    void listen(const QString& signal, const char* slot);
    [[nodiscard]] bool isOurs(const QDBusMessage& signal) const;
    void takeSession(const QString& handle);
    void bind();
    void takeBound(bool granted, const QVariantMap& results);
    /// Whether it is among those that the desktop tells of.
    bool take(const QList<PortalShortcut>& shortcuts);
    /// It is not bound, or not any more.
    void end();

    const PortalConnection& m_portal;
    QDBusConnection m_bus;
    QString m_owner;
    PortalShortcut m_shortcut;
    QString m_handle; ///< the session's object; empty while there is none
};

/// Asks that portal. Both outlive what is returned.
[[nodiscard]] DesktopHotKeyEvents::Ask portalShortcuts(PortalConnection& portal,
                                                       const Keyboard& keyboard);

} // namespace varno
