#include "platform/posix/CurlHttpSession.h"

#include <QFile>

#include <variant>

namespace varno {
namespace {

CURLSH* makeShare()
{
    static const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
    Q_UNUSED(initialised)
    return curl_share_init();
}

/// A URL as a connection and a request need it.
struct Address {
    QByteArray origin; ///< the URL as far as its host and port
    QByteArray target; ///< what stands in the request line
};

/// Empty for what is no URL.
Address addressOf(const QByteArray& url)
{
    const std::unique_ptr<CURLU, EndBy<curl_url_cleanup>> parsed(curl_url());
    if (curl_url_set(parsed.get(), CURLUPART_URL, url.constData(), 0) != CURLUE_OK)
        return {};
    const auto take = [&parsed](CURLUPart part) {
        char* text = nullptr;
        curl_url_get(parsed.get(), part, &text, 0);
        QByteArray copy(text);
        curl_free(text);
        return copy;
    };
    QByteArray target = take(CURLUPART_PATH);
    if (const QByteArray query = take(CURLUPART_QUERY); !query.isNull())
        target += '?' + query;
    for (const CURLUPart part : {CURLUPART_PATH, CURLUPART_QUERY, CURLUPART_FRAGMENT})
        curl_url_set(parsed.get(), part, nullptr, 0);
    return {.origin = take(CURLUPART_URL), .target = target};
}

} // namespace

CurlHttpSession::CurlHttpSession(const QString& authorities)
    : m_setting{.authorities = QFile::encodeName(authorities), .share = makeShare()}
{
    curl_share_setopt(m_setting.share, CURLSHOPT_USERDATA, this);
    curl_share_setopt(
        m_setting.share, CURLSHOPT_LOCKFUNC,
        +[](CURL*, curl_lock_data data, curl_lock_access, void* user) {
            static_cast<CurlHttpSession*>(user)->m_locks[data].lock();
        });
    curl_share_setopt(
        m_setting.share, CURLSHOPT_UNLOCKFUNC, +[](CURL*, curl_lock_data data, void* user) {
            static_cast<CurlHttpSession*>(user)->m_locks[data].unlock();
        });
    curl_share_setopt(m_setting.share, CURLSHOPT_SHARE, CURL_LOCK_DATA_DNS);
    curl_share_setopt(m_setting.share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
}

CurlHttpSession::~CurlHttpSession()
{
    curl_share_cleanup(m_setting.share);
}

std::optional<Failure> CurlHttpSession::perform(const HttpRequest& request, HttpReceiver& receiver,
                                                std::stop_token stop)
{
    if (request.url.contains('\0')) // libcurl would send what stands before it
        return Failure{describe(CURLE_URL_MALFORMAT)};
    Result<HeaderList> headers = headersOf(request);
    if (const auto* failure = std::get_if<Failure>(&headers))
        return *failure;

    const HeaderList& lines = std::get<HeaderList>(headers);
    if (request.takesConnectionMadeAhead) {
        const Address address = addressOf(request.url);
        const auto held = heldTransfer(address.origin);
        if (held && held->release(request, address.target, lines, receiver, stop))
            return held->run(request.timeout, stop);
    }
    // Not a byte has been sent so far.
    CurlTransfer transfer(m_setting, request.url);
    transfer.setRequest(request, std::get<HeaderList>(std::move(headers)), receiver);
    return transfer.run(request.timeout, stop);
}

void CurlHttpSession::connectAhead(const QByteArray& url, std::chrono::milliseconds lifetime,
                                   const std::stop_token& stop)
{
    const QByteArray origin = addressOf(url).origin;
    if (origin.isEmpty())
        return;
    const auto held = std::make_shared<HeldTransfer>(m_setting, origin);
    {
        const std::scoped_lock lock(m_aheadMutex);
        m_ahead = {.origin = origin, .transfer = held};
    }
    held->hold(lifetime, stop);
    const std::scoped_lock lock(m_aheadMutex);
    if (m_ahead.transfer == held)
        m_ahead = {};
}

std::shared_ptr<HeldTransfer> CurlHttpSession::heldTransfer(const QByteArray& origin)
{
    const std::scoped_lock lock(m_aheadMutex);
    return m_ahead.origin == origin ? m_ahead.transfer : nullptr;
}

} // namespace varno
