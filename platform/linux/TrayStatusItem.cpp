#include "platform/linux/TrayStatusItem.h"

#include "platform/Platform.h"
#include "platform/linux/XConnection.h"
#include "platform/linux/XcbReply.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QStyleHints>
#include <QTimer>
#include <QVersionNumber>

#include <utility>

namespace varno {

bool hasTrayOnX11()
{
    xcb_connection_t* connection = xConnection();
    if (!connection)
        return false;
    const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, xAtom("_NET_SYSTEM_TRAY_S0")), nullptr));
    return reply && reply->owner != XCB_NONE;
}

TrayStatusItem::TrayStatusItem(QIcon icon, QString name)
    : m_image(std::move(icon))
    , m_name(std::move(name))
    , m_notifier(m_image, m_name)
{
    connect(&m_notifier, &StatusNotifier::activated, this, &StatusItem::activated);
    connect(&m_notifier, &StatusNotifier::areaFound, this, &TrayStatusItem::setArea);
    if (xConnection()) {
        m_manager = xAtom("MANAGER");
        QCoreApplication::instance()->installNativeEventFilter(this);
    }
}

TrayStatusItem::~TrayStatusItem()
{
    if (QCoreApplication::instance())
        QCoreApplication::instance()->removeNativeEventFilter(this);
}

/// From 6.8 on the toolkit announces an icon of its own to a watcher without a host, beside ours.
void TrayStatusItem::setArea(NotifierArea area)
{
    static const auto version = QVersionNumber::fromString(QLatin1StringView(qVersion()));
    const bool mayStandBeside = version < QVersionNumber(6, 8);
    m_wantsOlderArea =
        area == NotifierArea::none || (area == NotifierArea::listOnly && mayStandBeside);
    if (m_icon)
        m_icon->setVisible(m_wantsOlderArea);
    else
        showInOlderArea();
}

void TrayStatusItem::showInOlderArea()
{
    if (!m_icon && m_wantsOlderArea && hasTrayOnX11())
        create();
}

void TrayStatusItem::create()
{
    m_icon = std::make_unique<QSystemTrayIcon>(m_image);
    m_icon->setToolTip(m_name);
    connect(m_icon.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                const bool isSecondary =
                    reason == QSystemTrayIcon::Context || reason == QSystemTrayIcon::MiddleClick;
                if (isSecondary || (reason == QSystemTrayIcon::Trigger && !isSecondClick()))
                    Q_EMIT activated({});
            });
    m_icon->show();
}

/// Of a double click on an icon of our own, which only has a place then: the toolkit reports it as
/// another reason, but as two single clicks when a window was shown in between.
bool TrayStatusItem::isSecondClick()
{
    const int interval = QGuiApplication::styleHints()->mouseDoubleClickInterval();
    const bool isSecond =
        m_clicked.isValid() && !m_clicked.hasExpired(interval) && !m_icon->geometry().isEmpty();
    if (isSecond)
        m_clicked.invalidate();
    else
        m_clicked.start();
    return isSecond;
}

bool TrayStatusItem::nativeEventFilter(const QByteArray& type, void* message, qintptr*)
{
    if (m_icon || type != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE)
        return false;
    const auto* announcement = reinterpret_cast<const xcb_client_message_event_t*>(event);
    if (announcement->type == m_manager)
        QTimer::singleShot(0, this, &TrayStatusItem::showInOlderArea);
    return false;
}

std::unique_ptr<StatusItem> makeSystemStatusItem(const QIcon& icon, const QString& name)
{
    return std::make_unique<TrayStatusItem>(icon, name);
}

} // namespace varno
