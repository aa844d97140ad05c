#pragma once

#include "platform/StatusItem.h"

#include <QAbstractNativeEventFilter>
#include <QDBusServiceWatcher>
#include <QElapsedTimer>
#include <QIcon>
#include <QSystemTrayIcon>

#include <memory>

namespace varno {

/// Through the toolkit's tray icon, which decides for good at its first use whether there is a host
/// on the bus: so it is not used before there is a host, there or on the X server.
class TrayStatusItem final : public StatusItem, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    TrayStatusItem(QIcon icon, QString name);
    ~TrayStatusItem() override;
    Q_DISABLE_COPY_MOVE(TrayStatusItem)

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

private:
    void create();
    [[nodiscard]] bool isSecondClick();

    QIcon m_image;
    QString m_name;
    QDBusServiceWatcher m_watcher;
    quint32 m_manager = 0;   ///< the atom of a host's announcement on the X server
    QElapsedTimer m_clicked; ///< since the first click
    std::unique_ptr<QSystemTrayIcon> m_icon;
};

} // namespace varno
