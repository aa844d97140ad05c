#pragma once

#include "core/JsonWriter.h"
#include "core/Prompts.h"
#include "demo/StandInService.h"
#include "providers/WireFormat.h"

#include <QUrl>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>

namespace varno {

/// A response, as far as it came, without the framing of HTTP.
struct RawReply {
    int status = 0;
    QByteArray contentType;
    QList<QByteArray> chunks; ///< as the service wrote them
    bool complete = false;

    [[nodiscard]] QByteArray body() const { return chunks.join(); }
    [[nodiscard]] QList<QByteArray> lines() const { return body().split('\n'); }
};

/// One request over a bare socket, to see every byte of the response, and when it comes.
class RawExchange {
public:
    RawExchange(const QByteArray& url, const QByteArray& headers, const QByteArray& body)
        : m_socket(::socket(AF_INET, SOCK_STREAM, 0))
    {
        const QUrl parsed(QString::fromLatin1(url));
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(parsed.port()));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const bool connected =
            ::connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
        const QByteArray request =
            "POST " + parsed.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority) +
            " HTTP/1.1\r\nHost: localhost\r\n" + headers +
            "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
        if (connected)
            static_cast<void>(::send(m_socket, request.constData(), request.size(), MSG_NOSIGNAL));
    }
    ~RawExchange() { ::close(m_socket); }
    Q_DISABLE_COPY_MOVE(RawExchange)

    /// Reads until `text` has come so many times; false when the connection ends before.
    bool readUntil(const QByteArray& text, qsizetype count)
    {
        while (m_received.count(text) < count) {
            if (!read())
                return false;
        }
        return true;
    }

    RawReply readAll()
    {
        while (read()) {
        }
        return parsed();
    }

private:
    bool read()
    {
        std::array<char, 65536> buffer = {};
        const ssize_t length = ::recv(m_socket, buffer.data(), buffer.size(), 0);
        if (length > 0)
            m_received.append(buffer.data(), length);
        return length > 0;
    }

    [[nodiscard]] RawReply parsed() const
    {
        const qsizetype headEnd = m_received.indexOf("\r\n\r\n");
        const QByteArray head = m_received.first(qMax(0, headEnd)) + "\r\n";
        RawReply reply{.status = head.mid(9, 3).toInt(), .contentType = {}, .chunks = {}};
        const qsizetype type = head.indexOf("Content-Type: ");
        if (type >= 0)
            reply.contentType = head.mid(type + 14, head.indexOf("\r\n", type) - type - 14);
        if (!head.contains("Transfer-Encoding: chunked\r\n")) {
            reply.complete = head.contains("Content-Length: 0\r\n");
            return reply;
        }
        for (qsizetype at = headEnd + 4; at < m_received.size();) {
            const qsizetype lineEnd = m_received.indexOf("\r\n", at);
            const qsizetype length = m_received.sliced(at, lineEnd - at).toLongLong(nullptr, 16);
            reply.complete = length == 0;
            if (length > 0)
                reply.chunks.append(m_received.mid(lineEnd + 2, length));
            at = lineEnd + 2 + length + 2;
        }
        return reply;
    }

    int m_socket;
    QByteArray m_received;
};

inline const QByteArray jsonType = "Content-Type: application/json\r\n";
inline const QByteArray claudeHeaders =
    jsonType + "X-Api-Key: k\r\nanthropic-version: 2023-06-01\r\n";

inline QByteArray claudeBody(const QString& prompt, bool streamed, bool webSearch = false)
{
    JsonWriter writer;
    writer.beginObject().key(u"model").string(u"claude-sonnet-5");
    writer.key(u"max_tokens").integer(2048).key(u"stream").boolean(streamed);
    writer.key(u"messages").beginArray().beginObject();
    writer.key(u"role").string(u"user").key(u"content").string(prompt).endObject().endArray();
    if (webSearch)
        writer.key(u"tools")
            .beginArray()
            .beginObject()
            .key(u"name")
            .string(u"s")
            .endObject()
            .endArray();
    return writer.endObject().text();
}

inline QByteArray geminiBody(const QString& prompt)
{
    JsonWriter writer;
    writer.beginObject().key(u"contents").beginArray().beginObject();
    writer.key(u"parts").beginArray().beginObject().key(u"text").string(prompt);
    return writer.endObject().endArray().endObject().endArray().endObject().text();
}

inline QByteArray geminiURL(const StandInService& service, bool streamed)
{
    return service.geminiBaseURL() + (streamed
                                          ? "/gemini-3.6-flash:streamGenerateContent?key=k&alt=sse"
                                          : "/gemini-3.6-flash:generateContent?key=k");
}

inline const QString aPrompt = entryPrompt(EntryType::definition, QStringLiteral("serendipity"));

inline RawReply askClaude(const StandInService& service, const QString& prompt = aPrompt,
                          bool streamed = true, bool webSearch = false)
{
    return RawExchange(service.claudeEndpoint(), claudeHeaders,
                       claudeBody(prompt, streamed, webSearch))
        .readAll();
}

inline RawReply askGemini(const StandInService& service, const QString& prompt = aPrompt,
                          bool streamed = true)
{
    return RawExchange(geminiURL(service, streamed), jsonType, geminiBody(prompt)).readAll();
}

using EventText = std::optional<QString> (*)(json::Parser&, std::string_view);

/// The pieces of text in a streamed reply, as the application reads them.
inline QStringList pieces(const RawReply& reply, EventText eventText)
{
    json::Parser parser;
    QStringList pieces;
    for (const QByteArray& line : reply.lines()) {
        const QByteArray trimmed = line.trimmed();
        const auto payload =
            eventPayload({trimmed.data(), static_cast<std::size_t>(trimmed.size())});
        const auto text = payload ? eventText(parser, *payload) : std::nullopt;
        if (text)
            pieces.append(*text);
    }
    return pieces;
}

inline QString claudeText(const RawReply& reply)
{
    return pieces(reply, &claudeEventText).join(QString());
}
inline QString geminiText(const RawReply& reply)
{
    return pieces(reply, &geminiEventText).join(QString());
}

inline QString claudeMessageText(const RawReply& reply)
{
    json::Parser parser;
    return claudeReplyText(parser, reply.body().toStdString())
        .value_or(QStringLiteral("unreadable"));
}

inline QByteArrayList eventNames(const RawReply& reply)
{
    QByteArrayList names;
    for (const QByteArray& line : reply.lines()) {
        if (line.startsWith("event: "))
            names.append(line.sliced(7));
    }
    return names;
}

/// Where the event with the `count`th piece of text of an Anthropic reply begins.
inline qsizetype textEvent(const QByteArray& body, int count)
{
    qsizetype at = -1;
    for (int i = 0; i < count; ++i)
        at = body.indexOf("\"text_delta\"", at + 1);
    return body.lastIndexOf("event: ", at);
}

/// The error type that the body of an Anthropic reply names; empty when it is no error.
inline QString claudeErrorType(const RawReply& reply)
{
    json::Parser parser;
    const std::string body = reply.body().toStdString();
    const auto value = json::parse(parser, body);
    const auto record = value ? json::as<json::Object>(*value) : std::nullopt;
    const auto error = record ? json::requiredMember<json::Object>(*record, "error") : std::nullopt;
    if (!error || json::requiredMember<std::string_view>(*record, "type") != "error" ||
        !json::requiredMember<std::string_view>(*error, "message"))
        return {};
    return json::toQString(
        json::requiredMember<std::string_view>(*error, "type").value_or(std::string_view()));
}

} // namespace varno
