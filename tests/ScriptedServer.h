#pragma once

#include <QByteArray>
#include <QList>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <list>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace varno {

/// An HTTP server on a loopback port of its own, in threads: keeps what came and answers with bytes
/// given beforehand, right or wrong. Any thread.
class ScriptedServer {
public:
    /// What happens on one connection.
    struct Answer {
        QList<QByteArray> pieces;
        std::chrono::milliseconds pause{0}; ///< before each piece but the first
        bool readsBody = true;              ///< before the first piece, and always the head
        bool closes = true;                 ///< otherwise silence until the client closes
    };

    struct Request {
        QByteArray head; ///< with the empty line
        QByteArray body;
    };

    /// One answer for each connection in turn, and the last for all further ones.
    explicit ScriptedServer(std::vector<Answer> answers)
        : m_answers(std::move(answers))
        , m_listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        auto* generic = reinterpret_cast<sockaddr*>(&address);
        if (::bind(m_listener, generic, length) != 0 || ::listen(m_listener, 128) != 0 ||
            ::getsockname(m_listener, generic, &length) != 0)
            qFatal("No port on the loopback interface");
        m_port = QByteArray::number(ntohs(address.sin_port));
        m_acceptor = std::thread([this] { acceptAll(); });
    }

    explicit ScriptedServer(Answer answer)
        : ScriptedServer(std::vector<Answer>{std::move(answer)})
    {
    }

    ~ScriptedServer()
    {
        ::shutdown(m_listener, SHUT_RDWR);
        m_acceptor.join();
        for (Connection& connection : m_connections) {
            ::shutdown(connection.socket, SHUT_RDWR);
            connection.thread.join();
            ::close(connection.socket);
        }
        ::close(m_listener);
    }
    Q_DISABLE_COPY_MOVE(ScriptedServer)

    [[nodiscard]] QByteArray url(const QByteArray& path = "/?key=SECRET") const
    {
        return "http://127.0.0.1:" + m_port + path;
    }

    /// Whatever has come so far, also requests that broke off.
    [[nodiscard]] QList<Request> requests() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_requests;
    }

    [[nodiscard]] qsizetype connectionCount() const
    {
        const std::scoped_lock lock(m_mutex);
        return static_cast<qsizetype>(m_connections.size());
    }

    /// As a server does that has had enough.
    void closeConnections() const
    {
        const std::scoped_lock lock(m_mutex);
        for (const Connection& connection : m_connections)
            ::shutdown(connection.socket, SHUT_RDWR);
    }

private:
    struct Connection {
        int socket;
        std::thread thread;
    };

    void acceptAll()
    {
        for (;;) {
            const int socket = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
            if (socket < 0)
                return;
            const std::scoped_lock lock(m_mutex);
            const Answer& answer = m_answers[std::min(m_connections.size(), m_answers.size() - 1)];
            m_connections.push_back({socket, std::thread([this, socket, &answer] {
                                         converse(socket, answer);
                                         ::shutdown(socket, SHUT_RDWR);
                                     })});
        }
    }

    void converse(int socket, const Answer& answer)
    {
        read(socket, answer.readsBody);
        for (qsizetype i = 0; i < answer.pieces.size(); ++i) {
            const QByteArray& piece = answer.pieces[i];
            if (i > 0 && !staysOpen(socket, static_cast<int>(answer.pause.count())))
                return;
            ::send(socket, piece.constData(), static_cast<size_t>(piece.size()), MSG_NOSIGNAL);
        }
        if (!answer.closes)
            staysOpen(socket, -1);
    }

    void read(int socket, bool readsBody)
    {
        QByteArray bytes;
        std::array<char, 16384> buffer = {};
        const auto receive = [&] {
            const ssize_t count = ::recv(socket, buffer.data(), buffer.size(), 0);
            bytes.append(buffer.data(), std::max<qsizetype>(count, 0));
            return count > 0;
        };
        while (!bytes.contains("\r\n\r\n") && receive()) {
        }
        const QByteArray head = bytes.left(bytes.indexOf("\r\n\r\n") + 4);
        const qsizetype length = readsBody ? head.size() + contentLength(head) : 0;
        while (bytes.size() < length && receive()) {
        }
        const std::scoped_lock lock(m_mutex);
        m_requests.append({.head = head, .body = bytes.mid(head.size())});
    }

    static qsizetype contentLength(const QByteArray& head)
    {
        const QByteArray name = "content-length:";
        const qsizetype from = head.toLower().indexOf(name) + name.size();
        return head.mid(from, head.indexOf('\r', from) - from).trimmed().toLongLong();
    }

    /// Waits, without end if `milliseconds` is -1; false as soon as the client, or the end of the
    /// server, has closed the connection.
    static bool staysOpen(int socket, int milliseconds)
    {
        pollfd wanted = {.fd = socket, .events = POLLRDHUP, .revents = 0};
        return ::poll(&wanted, 1, milliseconds) == 0;
    }

    std::vector<Answer> m_answers;
    int m_listener;
    QByteArray m_port;
    mutable std::mutex m_mutex; ///< guards the requests and the connections
    QList<Request> m_requests;
    std::list<Connection> m_connections;
    std::thread m_acceptor;
};

} // namespace varno
