#include "platform/linux/CurlHttpSession.h"

#include <QFile>

#include <algorithm>
#include <memory>

namespace varno {
namespace {

struct Delete {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    void operator()(CURLM* handle) const { curl_multi_cleanup(handle); }
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

/// What the callbacks of one transfer know.
struct Transfer {
    HttpReceiver& receiver;
    CURL* handle;
    bool headSeen = false;
    bool declined = false;

    size_t result(bool wanted, size_t length)
    {
        declined = !wanted;
        return wanted ? length : 0;
    }
};

size_t onHeader(char* data, size_t, size_t length, void* user)
{
    auto& transfer = *static_cast<Transfer*>(user);
    const std::string_view line(data, length);
    if (transfer.headSeen || (line != "\r\n" && line != "\n"))
        return length;
    long status = 0;
    curl_easy_getinfo(transfer.handle, CURLINFO_RESPONSE_CODE, &status);
    if (status < 200 && status != 101) // an interim response: the real one follows
        return length;
    transfer.headSeen = true;
    return transfer.result(transfer.receiver.onStatus(static_cast<int>(status)), length);
}

size_t onBody(char* data, size_t, size_t length, void* user)
{
    auto& transfer = *static_cast<Transfer*>(user);
    return transfer.result(transfer.receiver.onBytes({data, length}), length);
}

/// In our own words: libcurl's longer texts may quote the URL.
QString describe(CURLcode code)
{
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return QStringLiteral("The server could not be found. Are you connected to the internet?");
    case CURLE_COULDNT_RESOLVE_PROXY:
        return QStringLiteral("The proxy server could not be found.");
    case CURLE_COULDNT_CONNECT:
        return QStringLiteral("Could not connect to the server.");
    case CURLE_OPERATION_TIMEDOUT:
        return QStringLiteral("The request timed out.");
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
        return QStringLiteral("The identity of the server could not be verified.");
    case CURLE_SSL_CONNECT_ERROR:
        return QStringLiteral("A secure connection to the server could not be made.");
    case CURLE_PARTIAL_FILE:
    case CURLE_GOT_NOTHING:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
        return QStringLiteral("The connection to the server was lost.");
    default:
        return QString::fromUtf8(curl_easy_strerror(code));
    }
}

bool hasControlCharacter(const QByteArray& text)
{
    return std::any_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x20 || byte == 0x7f;
    });
}

/// Runs `handle` to its end, or until `stop`.
CURLcode run(CURL* handle, const std::stop_token& stop)
{
    const std::unique_ptr<CURLM, Delete> multi(curl_multi_init());
    if (!multi || curl_multi_add_handle(multi.get(), handle) != CURLM_OK)
        return CURLE_FAILED_INIT;
    const std::stop_callback wake(stop, [&] { curl_multi_wakeup(multi.get()); });

    CURLcode code = CURLE_ABORTED_BY_CALLBACK;
    for (int running = 1; running > 0 && !stop.stop_requested();) {
        if (curl_multi_perform(multi.get(), &running) != CURLM_OK)
            break;
        if (running > 0)
            curl_multi_poll(multi.get(), nullptr, 0, 1000, nullptr);
    }
    int remaining = 0;
    if (const CURLMsg* message = curl_multi_info_read(multi.get(), &remaining))
        code = message->data.result;
    curl_multi_remove_handle(multi.get(), handle);
    return code;
}

} // namespace

CurlHttpSession::CurlHttpSession(const QString& authorities)
    : m_authorities(QFile::encodeName(authorities))
{
    static const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
    Q_UNUSED(initialised)

    m_share = curl_share_init();
    curl_share_setopt(m_share, CURLSHOPT_USERDATA, this);
    curl_share_setopt(m_share, CURLSHOPT_LOCKFUNC,
                      +[](CURL*, curl_lock_data data, curl_lock_access, void* user) {
                          static_cast<CurlHttpSession*>(user)->m_locks[data].lock();
                      });
    curl_share_setopt(m_share, CURLSHOPT_UNLOCKFUNC, +[](CURL*, curl_lock_data data, void* user) {
        static_cast<CurlHttpSession*>(user)->m_locks[data].unlock();
    });
    curl_share_setopt(m_share, CURLSHOPT_SHARE, CURL_LOCK_DATA_DNS);
    curl_share_setopt(m_share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
}

CurlHttpSession::~CurlHttpSession() { curl_share_cleanup(m_share); }

std::optional<Failure> CurlHttpSession::perform(const HttpRequest& request, HttpReceiver& receiver,
                                                std::stop_token stop)
{
    const std::unique_ptr<CURL, Delete> handle(curl_easy_init());
    std::unique_ptr<curl_slist, Delete> headers;
    const auto addHeader = [&](const QByteArray& line) {
        curl_slist* longer = curl_slist_append(headers.get(), line.constData());
        static_cast<void>(headers.release());
        headers.reset(longer);
    };
    for (const auto& [name, value] : request.headers) {
        if (hasControlCharacter(value))
            return Failure{QStringLiteral("A line break or another control character stands in "
                                          "the “%1” of the request.")
                               .arg(QString::fromUtf8(name))};
        addHeader(name + ": " + value);
    }
    addHeader("Expect:"); // no round trip before the body

    Transfer transfer{.receiver = receiver, .handle = handle.get()};
    const auto set = [&](CURLoption option, auto value) {
        curl_easy_setopt(handle.get(), option, value);
    };
    set(CURLOPT_URL, request.url.constData());
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_HTTPHEADER, headers.get());
    set(CURLOPT_POSTFIELDS, request.body.constData());
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
    // HTTP/1.1, because libcurl sends a refused HTTP/2 stream again by itself.
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_SHARE, m_share);
    set(CURLOPT_FRESH_CONNECT, 1L);
    set(CURLOPT_FORBID_REUSE, 1L);
    set(CURLOPT_FOLLOWLOCATION, 0L);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L); // a stopped transfer does not wait for the resolver
    set(CURLOPT_TCP_NODELAY, 1L);
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    set(CURLOPT_CONNECTTIMEOUT, static_cast<long>(request.timeout.count()));
    set(CURLOPT_LOW_SPEED_LIMIT, 1L);
    set(CURLOPT_LOW_SPEED_TIME, static_cast<long>(request.timeout.count()));
    set(CURLOPT_HEADERFUNCTION, onHeader);
    set(CURLOPT_HEADERDATA, &transfer);
    set(CURLOPT_WRITEFUNCTION, onBody);
    set(CURLOPT_WRITEDATA, &transfer);
    if (!m_authorities.isEmpty())
        set(CURLOPT_CAINFO, m_authorities.constData());

    const CURLcode code = run(handle.get(), stop);
    if (code == CURLE_OK || transfer.declined)
        return std::nullopt;
    return Failure{describe(code)};
}

} // namespace varno
