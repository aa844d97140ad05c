#include "bench/desktop/StatusWatcher.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QEventLoop>
#include <QTimer>

namespace varno::bench {

using namespace Qt::StringLiterals;

StatusWatcher::StatusWatcher()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    m_isOnBus =
        bus.registerObject(u"/StatusNotifierWatcher"_s, this, QDBusConnection::ExportAllContents) &&
        bus.registerService(u"org.kde.StatusNotifierWatcher"_s);
}

void StatusWatcher::reset()
{
    m_items.clear();
    m_itemCame.reset();
}

std::optional<Clock::time_point> StatusWatcher::waitForItem(std::chrono::milliseconds patience)
{
    QEventLoop loop;
    connect(this, &StatusWatcher::StatusNotifierItemRegistered, &loop, &QEventLoop::quit);
    QTimer::singleShot(patience, &loop, &QEventLoop::quit);
    if (!m_itemCame)
        loop.exec();
    return m_itemCame;
}

void StatusWatcher::RegisterStatusNotifierItem(const QString& service)
{
    if (!m_itemCame)
        m_itemCame = Clock::now();
    m_items.append(service);
    const QString owner = service.startsWith(u'/') ? message().service() : service;
    QDBusMessage question = QDBusMessage::createMethodCall(
        owner, u"/StatusNotifierItem"_s, u"org.freedesktop.DBus.Properties"_s, u"GetAll"_s);
    question << u"org.kde.StatusNotifierItem"_s;
    connection().asyncCall(question);
    Q_EMIT StatusNotifierItemRegistered(service);
}

} // namespace varno::bench
