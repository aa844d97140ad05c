#pragma once

#include "platform/AnimationSetting.h"
#include "platform/linux/PortalConnection.h"

#include <QString>
#include <QVariant>

class QDBusMessage;
class QDBusPendingCallWatcher;
class QDBusVariant;

namespace varno {

/// The setting of GNOME and of KDE Plasma, told by the desktop's portal, which most other desktops
/// answer as well.
class PortalAnimationSetting final : public AnimationSetting {
    Q_OBJECT

public:
    /// `portal` outlives it.
    explicit PortalAnimationSetting(PortalConnection& portal = PortalConnection::shared());

    [[nodiscard]] bool isEnabled() override;

private Q_SLOTS:
    void take(const QString& space, const QString& key, const QDBusVariant& value);

private:
    void ask();
    void takeAll(const QDBusMessage& reply);
    void set(const QString& space, const QString& key, const QVariant& value);

    PortalConnection& m_portal;
    bool m_asked = false;
    bool m_gnomeWants = true;
    bool m_plasmaWants = true;
};

} // namespace varno
