#pragma once

#include "platform/HttpSession.h"

#include <QCoreApplication>

#include <curl/curl.h>

#include <memory>

namespace varno {

/// Ends what libcurl made. Named by its function, since a handle's type may be that of another.
template <auto function>
struct EndBy {
    void operator()(auto* made) const { function(made); }
};
using HeaderList = std::unique_ptr<curl_slist, EndBy<curl_slist_free_all>>;

void append(HeaderList& headers, const char* line);

/// The lines of `request`; a failure if one of them would be more than a line.
[[nodiscard]] Result<HeaderList> headersOf(const HttpRequest& request);

/// In our own words: libcurl's longer texts may quote the URL.
[[nodiscard]] QString describe(CURLcode code);

/// One POST by libcurl, on a connection of its own: it goes out once, or not at all.
class CurlTransfer {
    Q_DECLARE_TR_FUNCTIONS(varno::CurlTransfer)

public:
    /// What the transfers of a session have in common.
    struct Setting {
        QByteArray authorities; ///< the file of certificates to trust; empty is the system's
        CURLSH* share = nullptr;
    };

    /// `url` is where to connect to.
    CurlTransfer(const Setting& setting, const QByteArray& url);
    virtual ~CurlTransfer();
    Q_DISABLE_COPY_MOVE(CurlTransfer)

    /// Says, before the transfer runs, what goes out; `request` and `receiver` outlive the run.
    void setRequest(const HttpRequest& request, HeaderList headers, HttpReceiver& receiver);

    /// Moves the transfer until it ends, `stop` asks for its end, or nothing has passed on the wire
    /// for `timeout`. Returns the failure if it did not end well.
    [[nodiscard]] std::optional<Failure> run(std::chrono::milliseconds timeout,
                                             const std::stop_token& stop);

protected:
    /// Called once, when the connection is up and nothing has been sent on it.
    virtual bool mayGoOut(int /*localPort*/) { return true; }

    template <typename Value>
    void set(CURLoption option, Value value)
    {
        curl_easy_setopt(m_handle.get(), option, value);
    }

    [[nodiscard]] CURLM* multi() const { return m_multi.get(); }
    /// Whether there is anything to move; more calls than one do no harm.
    [[nodiscard]] bool begin();

    HeaderList m_headers;
    HttpReceiver* m_receiver = nullptr; ///< from when there is a request

private:
    static size_t onHeader(char* data, size_t, size_t length, void* user);
    static size_t onBody(char* data, size_t, size_t length, void* user);
    static int onConnected(void* user, char*, char*, int, int localPort);
    size_t result(bool wanted, size_t length);
    CURLcode drive(std::chrono::milliseconds timeout, const std::stop_token& stop);

    std::unique_ptr<CURLM, EndBy<curl_multi_cleanup>> m_multi;
    std::unique_ptr<CURL, EndBy<curl_easy_cleanup>> m_handle;
    int m_timesConnected = 0; ///< and ready to send
    bool m_headSeen = false;
    bool m_declined = false;
};

} // namespace varno
