#include "platform/linux/CurlHttpSession.h"

#include <QFile>

#include <algorithm>
#include <chrono>
#include <memory>
#include <variant>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

using namespace std::chrono_literals;

/// Ends what libcurl made. Named by its function, since a handle's type may be that of another.
template <auto function>
struct EndBy {
    void operator()(auto* made) const { function(made); }
};
using Handle = std::unique_ptr<CURL, EndBy<curl_easy_cleanup>>;
using Multi = std::unique_ptr<CURLM, EndBy<curl_multi_cleanup>>;
using HeaderList = std::unique_ptr<curl_slist, EndBy<curl_slist_free_all>>;

/// What the callbacks of one transfer know.
struct Transfer {
    HttpReceiver& receiver;
    CURL* handle = nullptr;
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
        return u"The server could not be found. Are you connected to the internet?"_s;
    case CURLE_COULDNT_RESOLVE_PROXY:
        return u"The proxy server could not be found."_s;
    case CURLE_COULDNT_CONNECT:
        return u"Could not connect to the server."_s;
    case CURLE_OPERATION_TIMEDOUT:
        return u"The request timed out."_s;
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
        return u"The identity of the server could not be verified."_s;
    case CURLE_SSL_CONNECT_ERROR:
        return u"A secure connection to the server could not be made."_s;
    case CURLE_PARTIAL_FILE:
    case CURLE_GOT_NOTHING:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
        return u"The connection to the server was lost."_s;
    case CURLE_BAD_CONTENT_ENCODING:
        return u"The reply is damaged."_s;
    case CURLE_ABORTED_BY_CALLBACK:
        return u"The request was cancelled."_s;
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

void append(HeaderList& headers, const QByteArray& line)
{
    curl_slist* longer = curl_slist_append(headers.get(), line.constData());
    static_cast<void>(headers.release());
    headers.reset(longer);
}

Result<HeaderList> headersOf(const HttpRequest& request)
{
    HeaderList headers;
    for (const auto& [name, value] : request.headers) {
        if (hasControlCharacter(name) || hasControlCharacter(value))
            return Failure{u"A line break or another control character stands in "
                           u"the “%1” of the request."_s.arg(QString::fromUtf8(name).simplified())};
        // libcurl leaves out a header without a value unless it ends so.
        append(headers, value.trimmed().isEmpty() ? name + ';' : name + ": " + value);
    }
    append(headers, "Expect:"); // no round trip before the body
    return headers;
}

void setUp(CURL* handle, const HttpRequest& request, const HeaderList& headers, Transfer& transfer)
{
    const auto set = [&](CURLoption option, auto value) {
        curl_easy_setopt(handle, option, value);
    };
    set(CURLOPT_URL, request.url.constData());
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_HTTPHEADER, headers.get());
    set(CURLOPT_POSTFIELDS, request.body.constData());
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
    // HTTP/1.1, because libcurl sends a refused HTTP/2 stream again by itself.
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_FRESH_CONNECT, 1L);
    set(CURLOPT_FORBID_REUSE, 1L);
    set(CURLOPT_FOLLOWLOCATION, 0L);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L); // a stopped transfer does not wait for the resolver
    set(CURLOPT_TCP_NODELAY, 1L);
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    set(CURLOPT_CONNECTTIMEOUT, static_cast<long>(request.timeout.count()));
    set(CURLOPT_ACCEPT_ENCODING, "identity"); // and a body that is packed all the same is unpacked
    set(CURLOPT_HEADERFUNCTION, onHeader);
    set(CURLOPT_HEADERDATA, &transfer);
    set(CURLOPT_WRITEFUNCTION, onBody);
    set(CURLOPT_WRITEDATA, &transfer);
}

/// Moves the transfer in `multi` until it ends, `stop` asks for its end, or nothing has passed on
/// the wire for `timeout`. The low-speed limit of libcurl is no measure of that: it takes an
/// average over seconds, which cuts a server that sends a byte now and then.
CURLcode drive(CURLM* multi, std::chrono::milliseconds timeout, const std::stop_token& stop)
{
    using Clock = std::chrono::steady_clock;
    Clock::time_point deadline;
    int active = 1; // sockets that can be read from or written to
    while (!stop.stop_requested()) {
        int running = 0;
        if (curl_multi_perform(multi, &running) != CURLM_OK)
            return CURLE_FAILED_INIT;
        if (active > 0) // the time that the receiver took is no silence
            deadline = Clock::now() + timeout;
        int remaining = 0;
        if (const CURLMsg* message = curl_multi_info_read(multi, &remaining))
            return message->data.result; // NOLINT(cppcoreguidelines-pro-type-union-access)

        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        const auto wait = std::clamp<std::chrono::milliseconds>(left, 0ms, 1h);
        active = 0;
        curl_multi_poll(multi, nullptr, 0, static_cast<int>(wait.count()), &active);
        if (active == 0 && Clock::now() >= deadline)
            return CURLE_OPERATION_TIMEDOUT;
    }
    return CURLE_ABORTED_BY_CALLBACK;
}

CURLcode run(CURL* handle, std::chrono::milliseconds timeout, const std::stop_token& stop)
{
    const Multi multi(curl_multi_init());
    if (!multi || curl_multi_add_handle(multi.get(), handle) != CURLM_OK)
        return CURLE_FAILED_INIT;
    const std::stop_callback wake(stop, [&] { curl_multi_wakeup(multi.get()); });
    const CURLcode code = drive(multi.get(), timeout, stop);
    curl_multi_remove_handle(multi.get(), handle);
    return code;
}

CURLSH* makeShare()
{
    static const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
    Q_UNUSED(initialised)
    return curl_share_init();
}

} // namespace

CurlHttpSession::CurlHttpSession(const QString& authorities)
    : m_authorities(QFile::encodeName(authorities))
    , m_share(makeShare())
{
    curl_share_setopt(m_share, CURLSHOPT_USERDATA, this);
    curl_share_setopt(
        m_share, CURLSHOPT_LOCKFUNC, +[](CURL*, curl_lock_data data, curl_lock_access, void* user) {
            static_cast<CurlHttpSession*>(user)->m_locks[data].lock();
        });
    curl_share_setopt(
        m_share, CURLSHOPT_UNLOCKFUNC, +[](CURL*, curl_lock_data data, void* user) {
            static_cast<CurlHttpSession*>(user)->m_locks[data].unlock();
        });
    curl_share_setopt(m_share, CURLSHOPT_SHARE, CURL_LOCK_DATA_DNS);
    curl_share_setopt(m_share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
}

CurlHttpSession::~CurlHttpSession()
{
    curl_share_cleanup(m_share);
}

std::optional<Failure> CurlHttpSession::perform(const HttpRequest& request, HttpReceiver& receiver,
                                                std::stop_token stop)
{
    if (request.url.contains('\0')) // libcurl would send what stands before it
        return Failure{describe(CURLE_URL_MALFORMAT)};
    const Result<HeaderList> headers = headersOf(request);
    if (const auto* failure = std::get_if<Failure>(&headers))
        return *failure;

    const Handle handle(curl_easy_init());
    Transfer transfer{.receiver = receiver, .handle = handle.get()};
    setUp(handle.get(), request, std::get<HeaderList>(headers), transfer);
    curl_easy_setopt(handle.get(), CURLOPT_SHARE, m_share);
    if (!m_authorities.isEmpty()) {
        curl_easy_setopt(handle.get(), CURLOPT_CAINFO, m_authorities.constData());
        curl_easy_setopt(handle.get(), CURLOPT_CAPATH, nullptr); // the system's folder
    }

    const CURLcode code = run(handle.get(), request.timeout, stop);
    if (transfer.declined)
        return std::nullopt;
    if (code != CURLE_OK)
        return Failure{describe(code)};
    // libcurl takes a connection that is closed within the head for an empty response.
    return transfer.headSeen ? std::nullopt : std::optional(Failure{describe(CURLE_GOT_NOTHING)});
}

} // namespace varno
