#include "platform/posix/HeldTransfer.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>

namespace varno {
namespace {

#ifdef POLLRDHUP
constexpr short closedByPeer = POLLRDHUP;
#else
constexpr short closedByPeer = POLLHUP; // where that tells of one direction alone, too
#endif

/// Zero for what is no socket of the internet.
int localPort(int socket)
{
    sockaddr_storage address = {};
    socklen_t length = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (::getsockname(socket, generic, &length) != 0)
        return 0;
    if (address.ss_family == AF_INET)
        return ntohs(reinterpret_cast<const sockaddr_in*>(generic)->sin_port);
    if (address.ss_family == AF_INET6)
        return ntohs(reinterpret_cast<const sockaddr_in6*>(generic)->sin6_port);
    return 0;
}

/// There may be something to read all the same: what TLS tells of itself.
bool isOpenAtBothEnds(int socket)
{
    pollfd wanted = {.fd = socket, .events = POLLIN | closedByPeer, .revents = 0};
    return ::poll(&wanted, 1, 0) >= 0 &&
           (wanted.revents & (closedByPeer | POLLHUP | POLLERR | POLLNVAL)) == 0;
}

} // namespace

HeldTransfer::HeldTransfer(const Setting& setting, const QByteArray& origin)
    : CurlTransfer(setting, origin)
{
    // The body, whose length is not known yet, is read when it goes out, and not cut in chunks.
    append(m_headers, "Transfer-Encoding:");
    set(CURLOPT_HTTPHEADER, m_headers.get());
    set(CURLOPT_POSTFIELDSIZE, -1L);
    set(CURLOPT_READFUNCTION, onRead);
    set(CURLOPT_READDATA, this);
    set(CURLOPT_SOCKOPTFUNCTION, onSocket);
    set(CURLOPT_SOCKOPTDATA, this);
    set(CURLOPT_HTTPPROXYTUNNEL, 1L); // without it a proxy wants the whole address as the target
}

void HeldTransfer::hold(std::chrono::milliseconds lifetime, const std::stop_token& stop)
{
    m_stop = stop;
    m_end = Clock::now() + lifetime;
    if (begin()) {
        const std::stop_callback wake(stop, [this] { curl_multi_wakeup(multi()); });
        while (!stop.stop_requested()) {
            int running = 0;
            curl_multi_perform(multi(), &running);
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_end - Clock::now());
            if (m_isReleased || running == 0 || left.count() <= 0)
                break;
            curl_multi_poll(multi(), nullptr, 0, static_cast<int>(left.count()), nullptr);
        }
    }
    const std::scoped_lock lock(m_mutex);
    m_isHeld = false;
    m_changed.notify_all();
}

bool HeldTransfer::release(const HttpRequest& request, const QByteArray& target,
                           const HeaderList& headers, HttpReceiver& receiver,
                           const std::stop_token& stop)
{
    const Release release{request, target, headers, receiver};
    std::unique_lock lock(m_mutex);
    if (m_release || !m_isHeld)
        return false;
    m_release = &release;
    m_changed.notify_all();
    const auto isOver = [this] { return !m_isHeld; };
    m_changed.wait(lock, stop, isOver);
    if (m_isReleased) // a matter of moments: nothing of this is waited for on the wire
        m_changed.wait(lock, isOver);
    m_release = nullptr;
    return m_isReleased;
}

/// On the thread that connects, from within libcurl, which formats the request afterwards.
bool HeldTransfer::mayGoOut(int port)
{
    std::unique_lock lock(m_mutex);
    if (!m_changed.wait_until(lock, m_stop, m_end, [this] { return m_release != nullptr; }))
        return false;
    const auto socket = std::find_if(m_sockets.begin(), m_sockets.end(),
                                     [port](int each) { return localPort(each) == port; });
    if (socket == m_sockets.end() || !isOpenAtBothEnds(*socket))
        return false;
    take(*m_release);
    m_isReleased = true;
    return true;
}

void HeldTransfer::take(const Release& release)
{
    const QByteArray& body = release.request.body;
    const QByteArray length = "Content-Length: " + QByteArray::number(body.size());
    for (const curl_slist* line = release.headers.get(); line; line = line->next)
        append(m_headers, line->data);
    append(m_headers, length.constData());
    set(CURLOPT_REQUEST_TARGET, release.target.constData());
    m_unsentBody = {body.constData(), static_cast<std::size_t>(body.size())};
    m_receiver = &release.receiver;
}

int HeldTransfer::onSocket(void* user, curl_socket_t socket, curlsocktype)
{
    static_cast<HeldTransfer*>(user)->m_sockets.push_back(socket);
    return CURL_SOCKOPT_OK;
}

size_t HeldTransfer::onRead(char* data, size_t, size_t room, void* user)
{
    std::string_view& unsent = static_cast<HeldTransfer*>(user)->m_unsentBody;
    const std::size_t count = unsent.copy(data, room);
    unsent.remove_prefix(count);
    return count;
}

} // namespace varno
