#include "platform/linux/DesktopService.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <utility>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

const QString busName = u"org.freedesktop.DBus"_s;
const QString busPath = u"/org/freedesktop/DBus"_s;

} // namespace

DesktopService::DesktopService(QString name, Connector connector)
    : m_name(std::move(name))
    , m_connector(std::move(connector))
    , m_bus(QString())
{
}

DesktopService::~DesktopService() = default;

void DesktopService::open()
{
    if (m_state == State::lost)
        startIntroduction();
    if (m_state != State::closed)
        return;
    m_state = State::connecting;
    // Not beside the end of the process, which takes down what the first use of a bus sets up.
    connect(QCoreApplication::instance(), &QObject::destroyed, this,
            [this] { m_background.stop(); });
    // The first use of a bus waits for it, and may even start one.
    const bool started = m_background.start(
        [this, address = m_inbox.address(), connector = m_connector](const std::stop_token&) {
            address.send([this, bus = connector()] { watch(bus); });
        });
    if (!started)
        m_inbox.address().send([this] { setOwner(QString()); });
}

void DesktopService::watch(const QDBusConnection& bus)
{
    m_bus = bus;
    if (!m_bus.isConnected()) {
        setOwner(QString());
        return;
    }
    // From any sender: naming one would wait for the bus to say who owns that name, here as in all
    // that listens to the service.
    m_bus.connect(QString(), busPath, busName, u"NameOwnerChanged"_s, {m_name}, QString(), this,
                  SLOT(takeOwner(QString, QString, QString)));
    m_bus.connect(QString(), busPath + u"/Local"_s, busName + u".Local"_s, u"Disconnected"_s, this,
                  SLOT(takeLossOfBus()));
    startIntroduction();
}

void DesktopService::startIntroduction()
{
    m_state = State::introducing;
    introduce();
}

void DesktopService::askForOwner()
{
    // Not the sender of a reply, which is empty in some versions of Qt.
    QDBusMessage call =
        QDBusMessage::createMethodCall(busName, busPath, busName, u"GetNameOwner"_s);
    call << m_name;
    auto* answer = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<QString> owner = *answer;
        setOwner(owner.isValid() ? owner.value() : QString());
    });
}

void DesktopService::setOwner(const QString& owner)
{
    m_owner = owner;
    m_state = State::ready;
    Q_EMIT ready();
}

void DesktopService::takeOwner(const QString& /*name*/, const QString& /*before*/,
                               const QString& owner)
{
    if (message().service() != busName || m_state == State::introducing || owner == m_owner)
        return; // the last two: our own call has started it
    if (!owner.isEmpty()) {
        startIntroduction();
        return;
    }
    m_owner.clear();
    m_state = State::lost;
    Q_EMIT lost();
}

} // namespace varno
