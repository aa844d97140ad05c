#include "platform/posix/CurlTransfer.h"

#include <algorithm>

namespace varno {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

bool hasControlCharacter(const QByteArray& text)
{
    return std::any_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x20 || byte == 0x7f;
    });
}

} // namespace

void append(HeaderList& headers, const char* line)
{
    curl_slist* longer = curl_slist_append(headers.get(), line);
    static_cast<void>(headers.release());
    headers.reset(longer);
}

Result<HeaderList> headersOf(const HttpRequest& request)
{
    HeaderList headers;
    for (const auto& [name, value] : request.headers) {
        if (hasControlCharacter(name) || hasControlCharacter(value))
            return Failure{CurlTransfer::tr("A line break or another control character stands in "
                                            "the “%1” of the request.")
                               .arg(QString::fromUtf8(name).simplified())};
        // libcurl leaves out a header without a value unless it ends so.
        const QByteArray line = value.trimmed().isEmpty() ? name + ';' : name + ": " + value;
        append(headers, line.constData());
    }
    append(headers, "Expect:"); // no round trip before the body
    return headers;
}

QString describe(CURLcode code)
{
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return CurlTransfer::tr(
            "The server could not be found. Are you connected to the internet?");
    case CURLE_COULDNT_RESOLVE_PROXY:
        return CurlTransfer::tr("The proxy server could not be found.");
    case CURLE_COULDNT_CONNECT:
        return CurlTransfer::tr("Could not connect to the server.");
    case CURLE_OPERATION_TIMEDOUT:
        return CurlTransfer::tr("The request timed out.");
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
        return CurlTransfer::tr("The identity of the server could not be verified.");
    case CURLE_SSL_CONNECT_ERROR:
        return CurlTransfer::tr("A secure connection to the server could not be made.");
    case CURLE_PARTIAL_FILE:
    case CURLE_GOT_NOTHING:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
        return CurlTransfer::tr("The connection to the server was lost.");
    case CURLE_BAD_CONTENT_ENCODING:
        return CurlTransfer::tr("The reply is damaged.");
    case CURLE_ABORTED_BY_CALLBACK:
        return CurlTransfer::tr("The request was cancelled.");
    default:
        return QString::fromUtf8(curl_easy_strerror(code));
    }
}

CurlTransfer::CurlTransfer(const Setting& setting, const QByteArray& url)
    : m_multi(curl_multi_init())
    , m_handle(curl_easy_init())
{
    set(CURLOPT_URL, url.constData());
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_POST, 1L);
    // HTTP/1.1, because libcurl sends a refused HTTP/2 stream again by itself.
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_FRESH_CONNECT, 1L);
    set(CURLOPT_FORBID_REUSE, 1L);
    set(CURLOPT_FOLLOWLOCATION, 0L);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L); // a stopped transfer does not wait for the resolver
    set(CURLOPT_TCP_NODELAY, 1L);
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    set(CURLOPT_ACCEPT_ENCODING, "identity"); // and a body that is packed all the same is unpacked
    set(CURLOPT_HEADERFUNCTION, onHeader);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, onBody);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_PREREQFUNCTION, onConnected);
    set(CURLOPT_PREREQDATA, this);
    set(CURLOPT_SHARE, setting.share);
    if (!setting.authorities.isEmpty()) {
        set(CURLOPT_CAINFO, setting.authorities.constData());
        set(CURLOPT_CAPATH, nullptr); // the system's folder
    }
}

CurlTransfer::~CurlTransfer()
{
    curl_multi_remove_handle(m_multi.get(), m_handle.get());
}

void CurlTransfer::setRequest(const HttpRequest& request, HeaderList headers,
                              HttpReceiver& receiver)
{
    m_headers = std::move(headers);
    m_receiver = &receiver;
    set(CURLOPT_HTTPHEADER, m_headers.get());
    set(CURLOPT_POSTFIELDS, request.body.constData());
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
    set(CURLOPT_CONNECTTIMEOUT, static_cast<long>(request.timeout.count()));
}

int CurlTransfer::onConnected(void* user, char*, char*, int, int localPort)
{
    auto& transfer = *static_cast<CurlTransfer*>(user);
    const bool isFirst = ++transfer.m_timesConnected == 1; // a second would be sent again
    return isFirst && transfer.mayGoOut(localPort) ? CURL_PREREQFUNC_OK : CURL_PREREQFUNC_ABORT;
}

size_t CurlTransfer::onHeader(char* data, size_t, size_t length, void* user)
{
    auto& transfer = *static_cast<CurlTransfer*>(user);
    const std::string_view line(data, length);
    if (transfer.m_headSeen || (line != "\r\n" && line != "\n"))
        return length;
    long status = 0;
    curl_easy_getinfo(transfer.m_handle.get(), CURLINFO_RESPONSE_CODE, &status);
    if (status < 200 && status != 101) // an interim response: the real one follows
        return length;
    transfer.m_headSeen = true;
    return transfer.result(transfer.m_receiver->onStatus(static_cast<int>(status)), length);
}

size_t CurlTransfer::onBody(char* data, size_t, size_t length, void* user)
{
    auto& transfer = *static_cast<CurlTransfer*>(user);
    return transfer.result(transfer.m_receiver->onBytes({data, length}), length);
}

size_t CurlTransfer::result(bool wanted, size_t length)
{
    m_declined = !wanted;
    return wanted ? length : 0;
}

bool CurlTransfer::begin()
{
    const CURLMcode added = curl_multi_add_handle(m_multi.get(), m_handle.get());
    return added == CURLM_OK || added == CURLM_ADDED_ALREADY;
}

/// The low-speed limit of libcurl is no measure of silence: it takes an average over seconds, which
/// cuts a server that sends a byte now and then.
CURLcode CurlTransfer::drive(std::chrono::milliseconds timeout, const std::stop_token& stop)
{
    using Clock = std::chrono::steady_clock;
    Clock::time_point deadline;
    int active = 1; // sockets that can be read from or written to
    while (!stop.stop_requested()) {
        int running = 0;
        if (curl_multi_perform(m_multi.get(), &running) != CURLM_OK)
            return CURLE_FAILED_INIT;
        if (active > 0) // the time that the receiver took is no silence
            deadline = Clock::now() + timeout;
        int remaining = 0;
        if (const CURLMsg* message = curl_multi_info_read(m_multi.get(), &remaining))
            return message->data.result; // NOLINT(cppcoreguidelines-pro-type-union-access)

        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        const auto wait = std::clamp<std::chrono::milliseconds>(left, 0ms, 1h);
        active = 0;
        curl_multi_poll(m_multi.get(), nullptr, 0, static_cast<int>(wait.count()), &active);
        if (active == 0 && Clock::now() >= deadline)
            return CURLE_OPERATION_TIMEDOUT;
    }
    return CURLE_ABORTED_BY_CALLBACK;
}

std::optional<Failure> CurlTransfer::run(std::chrono::milliseconds timeout,
                                         const std::stop_token& stop)
{
    const std::stop_callback wake(stop, [this] { curl_multi_wakeup(m_multi.get()); });
    CURLcode code = begin() ? drive(timeout, stop) : CURLE_FAILED_INIT;
    if (m_declined)
        return std::nullopt;
    // libcurl takes a connection that is closed within the head for an empty response.
    if (m_timesConnected > 1 || (code == CURLE_OK && !m_headSeen))
        code = CURLE_GOT_NOTHING;
    return code == CURLE_OK ? std::nullopt : std::optional(Failure{describe(code)});
}

} // namespace varno
