#pragma once

#include "core/Prompts.h"
#include "demo/StandInService.h"
#include "demo/WireText.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpSocket>
#include <QUrl>

namespace varno {

using namespace Qt::StringLiterals;

inline const QString aPrompt = entryPrompt(EntryType::definition, u"serendipity"_s);

// Requests in good order, for a stream with tools, whole except for their lengths.
inline const QByteArray claudeRequest =
    "POST /v1/messages HTTP/1.1\r\nContent-Type: application/json\r\n"
    "X-Api-Key: k\r\nanthropic-version: 2023-06-01\r\n\r\n"
    "{\"model\":\"claude-sonnet-5\",\"max_tokens\":9,\"stream\":true,"
    "\"tools\":[{\"name\":\"web_search\"}],\"messages\":[{\"role\":\"user\",\"content\":" +
    quoted(aPrompt) + "}]}";
inline const QByteArray geminiRequest =
    "POST /v1beta/models/gemini-3.6-flash:streamGenerateContent?key=k&alt=sse HTTP/1.1\r\n"
    "Content-Type: application/json\r\n\r\n"
    "{\"tools\":[{\"google_search\":{}}],\"contents\":[{\"parts\":[{\"text\":" +
    quoted(aPrompt) + "}]}]}";

/// A response, as far as it came, without the framing of HTTP.
struct BareReply {
    int status = 0;
    QByteArray contentType;
    QByteArrayList chunks; ///< as the service wrote them
    bool complete = false;

    [[nodiscard]] QByteArray body() const { return chunks.join(); }
    [[nodiscard]] QJsonValue json() const { return QJsonDocument::fromJson(body()).object(); }
};

/// One request over a bare socket, to see every byte of the response, and when it comes.
class Exchange {
public:
    Exchange(const StandInService& service, QByteArray request)
    {
        const qsizetype headEnd = request.indexOf("\r\n\r\n") + 2;
        const qsizetype length = request.size() - headEnd - 2;
        request.insert(headEnd, "Content-Length: " + QByteArray::number(length) + "\r\n");
        const QUrl url = QUrl::fromEncoded(service.claudeEndpoint());
        m_socket.connectToHost(url.host(), static_cast<quint16>(url.port()));
        m_socket.write(request);
    }

    /// Reads until `text` has come; false when the connection ends before.
    bool readUntil(const QByteArray& text)
    {
        while (!m_received.contains(text) && m_socket.waitForReadyRead())
            m_received += m_socket.readAll();
        return m_received.contains(text);
    }

    BareReply readAll()
    {
        while (m_socket.waitForReadyRead())
            m_received += m_socket.readAll();
        const qsizetype type = m_received.indexOf("Content-Type: ") + 14;
        BareReply reply{.status = m_received.mid(9, 3).toInt(),
                        .contentType = m_received.mid(type, m_received.indexOf('\r', type) - type),
                        .chunks = {}};
        for (qsizetype at = m_received.indexOf("\r\n\r\n") + 4; at < m_received.size();) {
            const qsizetype start = m_received.indexOf("\r\n", at) + 2;
            const qsizetype length = m_received.sliced(at, start - at).trimmed().toInt(nullptr, 16);
            reply.complete = length == 0;
            if (length > 0)
                reply.chunks.append(m_received.mid(start, length));
            at = start + length + 2;
        }
        return reply;
    }

private:
    QTcpSocket m_socket;
    QByteArray m_received;
};

inline BareReply ask(const StandInService& service, const QByteArray& request)
{
    return Exchange(service, request).readAll();
}

} // namespace varno
