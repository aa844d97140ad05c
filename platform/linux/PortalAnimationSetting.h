#pragma once

#include "platform/AnimationSetting.h"

#include <QFutureWatcher>
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
    [[nodiscard]] bool isEnabled() override;

private Q_SLOTS:
    void take(const QString& space, const QString& key, const QDBusVariant& value);

private:
    void connectToBus();
    void ask();
    void takeAll(const QDBusMessage& reply);
    void set(const QString& space, const QString& key, const QVariant& value);

    QFutureWatcher<void> m_connecting;
    bool m_asked = false;
    bool m_gnomeWants = true;
    bool m_plasmaWants = true;
};

} // namespace varno
