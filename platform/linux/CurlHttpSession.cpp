#include "platform/linux/CurlHttpSession.h"

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

    CurlTransfer transfer(m_setting, request.url);
    transfer.setRequest(request, std::get<HeaderList>(std::move(headers)), receiver);
    return transfer.run(request.timeout, stop);
}

} // namespace varno
