#pragma once

#include "platform/linux/StatusNotifier.h"

#include <QAbstractNativeEventFilter>
#include <QElapsedTimer>
#include <QIcon>
#include <QSystemTrayIcon>

#include <memory>

namespace varno {

/// Whether the X server has a status area of the older kind.
[[nodiscard]] bool hasTrayOnX11();

/// An icon on the session bus for as long as that has a host, and otherwise, when that is known, in
/// the older status area of the X server: by the toolkit, which would ask for a host itself and
/// wait for the answer.
class TrayStatusItem final : public StatusItem, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    TrayStatusItem(QIcon icon, QString name);
    ~TrayStatusItem() override;
    Q_DISABLE_COPY_MOVE(TrayStatusItem)

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

private:
    void setArea(NotifierArea area);
    void showInOlderArea();
    void create();
    [[nodiscard]] bool isSecondClick();

    QIcon m_image;
    QString m_name;
    StatusNotifier m_notifier;
    bool m_wantsOlderArea = false;
    quint32 m_manager = 0;   ///< the atom of a host's announcement on the X server
    QElapsedTimer m_clicked; ///< since the first click
    std::unique_ptr<QSystemTrayIcon> m_icon;
};

} // namespace varno
