#pragma once

#include <QByteArray>
#include <QList>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace varno {

/// An HTTP server on a loopback port of its own, in threads: keeps what came and answers with bytes
/// given beforehand, right or wrong. Any thread.
class ScriptedServer {
public:
    struct Piece {
        QByteArray bytes;
        std::chrono::milliseconds after{0}; ///< silence before the bytes
    };
    enum class End { close, silence };
    enum class Reads { wholeRequest, headOnly, nothing };

    /// What happens on one connection: a request is read, the pieces are sent.
    struct Script {
        std::vector<Piece> pieces;
        End end = End::close; ///< `silence` lasts until the client closes
        Reads reads = Reads::wholeRequest;
    };

    struct Request {
        QByteArray head; ///< with the empty line
        QByteArray body;
    };

    /// One script for each connection in turn, and the last for all further ones.
    explicit ScriptedServer(std::vector<Script> scripts)
        : m_scripts(std::move(scripts))
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
        m_port = ntohs(address.sin_port);
        m_acceptor = std::thread([this] { acceptAll(); });
    }

    explicit ScriptedServer(Script script)
        : ScriptedServer(std::vector<Script>{std::move(script)})
    {
    }

    /// Sends `response`, then closes.
    explicit ScriptedServer(const QByteArray& response)
        : ScriptedServer(Script{.pieces = {{.bytes = response}}})
    {
    }

    ~ScriptedServer()
    {
        ::shutdown(m_listener, SHUT_RDWR);
        m_acceptor.join();
        {
            const std::scoped_lock lock(m_mutex);
            for (const int connection : m_open)
                ::shutdown(connection, SHUT_RDWR);
        }
        for (std::thread& conversation : m_conversations)
            conversation.join();
        ::close(m_listener);
    }
    Q_DISABLE_COPY_MOVE(ScriptedServer)

    [[nodiscard]] quint16 port() const { return m_port; }

    /// `path` begins with a slash.
    [[nodiscard]] QByteArray url(const QByteArray& path) const
    {
        return "http://127.0.0.1:" + QByteArray::number(m_port) + path;
    }

    /// Whatever has come so far, also requests that broke off.
    [[nodiscard]] QList<Request> requests() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_requests;
    }

    [[nodiscard]] std::size_t connectionCount() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_connectionCount;
    }

    [[nodiscard]] std::size_t openConnectionCount() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_open.size();
    }

private:
    void acceptAll()
    {
        for (;;) {
            const int connection = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
            if (connection < 0 && (errno == EINTR || errno == ECONNABORTED))
                continue;
            if (connection < 0)
                return;
            const std::scoped_lock lock(m_mutex);
            const Script& script = m_scripts[std::min(m_connectionCount, m_scripts.size() - 1)];
            ++m_connectionCount;
            m_open.push_back(connection);
            m_conversations.emplace_back([this, connection, &script] {
                converse(connection, script);
                const std::scoped_lock relock(m_mutex);
                std::erase(m_open, connection);
                ::close(connection);
            });
        }
    }

    void converse(int connection, const Script& script)
    {
        if (script.reads != Reads::nothing)
            keep(read(connection, script.reads));
        for (const Piece& piece : script.pieces) {
            if (piece.after.count() > 0 && !staysOpen(connection, piece.after))
                return;
            if (::send(connection, piece.bytes.constData(), size_t(piece.bytes.size()),
                       MSG_NOSIGNAL) != piece.bytes.size())
                return;
        }
        while (script.end == End::silence && staysOpen(connection, std::chrono::minutes(1))) {
        }
    }

    void keep(const Request& request)
    {
        const std::scoped_lock lock(m_mutex);
        if (!request.head.isEmpty())
            m_requests.append(request);
    }

    static Request read(int connection, Reads reads)
    {
        QByteArray bytes;
        qsizetype wanted = -1;
        for (;;) {
            const qsizetype end = bytes.indexOf("\r\n\r\n");
            if (end >= 0 && wanted < 0)
                wanted = end + 4 + (reads == Reads::wholeRequest ? contentLength(bytes) : 0);
            if (wanted >= 0 && bytes.size() >= wanted)
                return {.head = bytes.left(end + 4), .body = bytes.sliced(end + 4)};
            std::array<char, 16384> buffer;
            const ssize_t count = ::recv(connection, buffer.data(), buffer.size(), 0);
            if (count <= 0)
                return {.head = bytes, .body = {}};
            bytes.append(buffer.data(), count);
        }
    }

    static qsizetype contentLength(const QByteArray& head)
    {
        const QByteArray name = "\r\ncontent-length:";
        const qsizetype at = head.toLower().indexOf(name);
        if (at < 0)
            return 0;
        const qsizetype from = at + name.size();
        return head.mid(from, head.indexOf("\r\n", from) - from).trimmed().toLongLong();
    }

    /// Waits; false as soon as the client, or the end of the server, has closed the connection.
    static bool staysOpen(int connection, std::chrono::milliseconds time)
    {
        pollfd wanted = {.fd = connection, .events = POLLRDHUP, .revents = 0};
        return ::poll(&wanted, 1, static_cast<int>(time.count())) == 0;
    }

    std::vector<Script> m_scripts;
    int m_listener;
    quint16 m_port = 0;
    mutable std::mutex m_mutex;
    QList<Request> m_requests;
    std::vector<int> m_open;
    std::size_t m_connectionCount = 0;
    std::vector<std::thread> m_conversations;
    std::thread m_acceptor;
};

} // namespace varno
