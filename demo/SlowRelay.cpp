#include "demo/SlowRelay.h"

#include <QDeadlineTimer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QUrl>

#include <deque>
#include <memory>

namespace varno {
namespace {

/// What comes from one end of a connection goes to the other, not before `ready`.
void pass(QTcpSocket* from, QTcpSocket* to, std::chrono::milliseconds delay,
          const QDeadlineTimer& ready = {})
{
    from->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    const auto held = std::make_shared<std::deque<QByteArray>>(); // timers may change places
    QObject::connect(from, &QTcpSocket::readyRead, to, [=] {
        held->push_back(from->readAll());
        const auto wait = delay + std::chrono::milliseconds(ready.remainingTime());
        QTimer::singleShot(wait, Qt::PreciseTimer, to, [=] {
            to->write(held->front());
            held->pop_front();
        });
    });
    QObject::connect(from, &QTcpSocket::disconnected, to,
                     [=] { QTimer::singleShot(delay, to, &QTcpSocket::disconnectFromHost); });
}

} // namespace

SlowRelay::SlowRelay(const QByteArray& url, std::chrono::milliseconds delay)
{
    auto* server = new QTcpServer;
    if (!server->listen(QHostAddress::LocalHost))
        qFatal("No port on the loopback interface");
    QUrl relayed = QUrl::fromEncoded(url);
    const auto port = static_cast<quint16>(relayed.port());
    relayed.setPort(server->serverPort());
    m_url = relayed.toEncoded();

    QObject::connect(server, &QTcpServer::newConnection, server, [=, this] {
        while (QTcpSocket* const client = server->nextPendingConnection()) {
            ++m_connectionCount;
            auto* const far = new QTcpSocket(client);
            far->connectToHost(QHostAddress::LocalHost, port);
            pass(client, far, delay, QDeadlineTimer(2 * delay, Qt::PreciseTimer));
            pass(far, client, delay);
        }
    });
    server->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::finished, server, &QObject::deleteLater);
    m_thread.start();
}

SlowRelay::~SlowRelay()
{
    m_thread.quit();
    m_thread.wait();
}

} // namespace varno
