#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <chrono>
#include <memory>
#include <optional>

namespace varno {

/// One request as the stand-in service received it.
struct ReceivedRequest {
    QByteArray path; ///< with its query
    QList<std::pair<QByteArray, QByteArray>> headers;
    QByteArray body;

    /// The first header of that name, whatever its case; empty when there is none.
    [[nodiscard]] QByteArray header(const QByteArray& name) const;
};

/// How the stand-in service answers, beyond the plain answer from its library.
struct Script {
    std::chrono::milliseconds pace{0}; ///< rest between two events
    std::optional<int> pieceLength;    ///< length of the text in each event, in characters
    std::optional<int> writeLength;    ///< bytes given to the network at a time

    int statusCode = 200;
    /// The body in place of the service's own: of an error, or a whole reply to be replayed.
    std::optional<QByteArray> body;
    QByteArray contentType; ///< with `body`; empty is the service's own
    bool crlf = false;      ///< ends Anthropic's lines with CR LF too

    std::optional<QByteArray> text; ///< the model's answer in place of the library's, in UTF-8
    std::chrono::milliseconds pauseAfterFirstEvent{0};
    std::optional<int> hangAfterEvents; ///< then silence, with the connection open
    std::optional<int> dropAfterEvents; ///< then the connection is cut in mid-reply
    bool malformedEvent = false;        ///< an event that is no JSON goes before the second one
    qint64 hugeLineLength = 0;          ///< a line of that many bytes goes before the second event
    bool errorEvent = false;            ///< an "error" event goes before the second one
};

/// A model service on this machine which speaks both providers' wire formats and answers from a
/// small library of entries. Runs on threads of its own; all calls are safe from any thread.
class StandInService {
public:
    struct Settings {
        QString address = QStringLiteral("127.0.0.1");
        int port = 0; ///< 0 lets the system choose
        bool tls = false;
    };

    /// Null when `settings.address` is not a loopback address, or cannot be listened on; then
    /// `error`, if given, says why.
    static std::unique_ptr<StandInService> start(const Settings& settings = {},
                                                 QString* error = nullptr);

    /// Ends at once, also in the middle of a reply.
    ~StandInService();
    StandInService(const StandInService&) = delete;
    StandInService& operator=(const StandInService&) = delete;

    /// The URL of Anthropic's messages, and that of Gemini's models.
    [[nodiscard]] QByteArray claudeEndpoint() const;
    [[nodiscard]] QByteArray geminiBaseURL() const;

    /// A file with the certificate that a client of the TLS form has to trust; gone with the service.
    [[nodiscard]] QString certificateFile() const;

    /// Takes effect with the next request. `scriptTOC` is for the requests that are not streamed.
    void setScript(const Script& script);
    void setTOCScript(const Script& script);

    [[nodiscard]] QList<ReceivedRequest> requests() const;

private:
    class Implementation;
    explicit StandInService(std::unique_ptr<Implementation> implementation);

    std::unique_ptr<Implementation> m_implementation;
};

} // namespace varno
