#pragma once

#include "platform/Result.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <chrono>
#include <memory>
#include <optional>
#include <utility>

namespace varno {

using namespace Qt::StringLiterals;

/// One request as the stand-in service received it.
struct ReceivedRequest {
    QByteArray path;                                  ///< with its query
    QList<std::pair<QByteArray, QByteArray>> headers; ///< not in the order of their arrival
    QByteArray body;

    /// The first header of that name, whatever its case; empty when there is none.
    [[nodiscard]] QByteArray header(const QByteArray& name) const;
};

/// How the stand-in service answers, beyond the plain answer from its library. "Events" that are
/// counted are those with a piece of the answer: the first one is the same for both services. Of a
/// reply in one, and of an error, the body is the only event; in a recorded reply, whatever an
/// empty line ends.
struct Script {
    std::chrono::milliseconds pace{0};   ///< rest after each event, also those not counted
    std::optional<int> pieceLength = {}; ///< UTF-16 length of the text in each event
    std::optional<int> writeLength = {}; ///< bytes given to the network at a time

    int statusCode = 200; ///< 200 to 599
    /// The body in place of the service's own, to the byte: of an error, or a recorded reply.
    std::optional<QByteArray> body = {};
    QByteArray contentType = {}; ///< with `body`; empty is the service's own
    bool crlf = false;           ///< ends Anthropic's lines with CR LF too

    std::optional<QByteArray> text = {}; ///< the model's answer in place of the library's, in UTF-8
    std::chrono::milliseconds pauseAfterFirstEvent{0};
    std::optional<int> hangAfterEvents = {}; ///< then silence, with the connection open
    std::optional<int> dropAfterEvents = {}; ///< then the connection is cut in mid-reply

    // Of a streamed reply that is not recorded:
    bool malformedEvent = false; ///< an event that is no JSON goes before the second one
    qint64 hugeLineLength = 0;   ///< a line of that many bytes, without text, goes there
    bool errorEvent = false;     ///< an "error" event goes there
};

/// A model service on this machine which speaks both providers' wire formats and answers from a
/// small library of entries. Runs on threads of its own, 64 replies at a time; all calls are safe
/// from any thread.
///
/// It keeps no secret: any key is good. A request that the real service would refuse is refused as
/// there, whatever the script.
class StandInService {
public:
    struct Settings {
        QString address = u"127.0.0.1"_s;
        int port = 0; ///< 0 lets the system choose
        bool tls = false;
        bool isOldTls = false; ///< no newer than TLS 1.2, which takes a round trip more
    };

    /// Fails when `settings.address` is not a loopback address, or cannot be listened on.
    static Result<std::unique_ptr<StandInService>> start(const Settings& settings);
    static Result<std::unique_ptr<StandInService>> start() { return start(Settings()); }

    /// Ends at once, also in the middle of a reply. Only a client that has stopped reading, or has
    /// not sent the whole of its request, can delay it, by some seconds.
    ~StandInService();
    StandInService(const StandInService&) = delete;
    StandInService& operator=(const StandInService&) = delete;

    /// The URL of Anthropic's messages, and that of Gemini's models.
    [[nodiscard]] QByteArray claudeEndpoint() const;
    [[nodiscard]] QByteArray geminiBaseURL() const;

    /// A file with the certificate that a client of the TLS form has to trust; gone with the
    /// service. Empty without TLS.
    [[nodiscard]] QString certificateFile() const;

    /// Takes effect with the next request. The TOC script is for the requests that are not
    /// streamed.
    void setScript(const Script& script);
    void setTOCScript(const Script& script);

    /// All requests so far, in memory only.
    [[nodiscard]] QList<ReceivedRequest> requests() const;

private:
    class Implementation;
    explicit StandInService(std::unique_ptr<Implementation> implementation);

    std::unique_ptr<Implementation> m_implementation;
};

} // namespace varno
