#include "demo/StandInService.h"

#include "core/EntryText.h"
#include "core/JsonWriter.h"
#include "core/Prompts.h"
#include "demo/EntryLibrary.h"
#include "demo/Question.h"
#include "platform/linux/CurlHttpSession.h"
#include "providers/JsonArray.h"
#include "providers/WireFormat.h"

#include <QDirIterator>
#include <QFile>
#include <QTest>
#include <QUrl>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>

using namespace varno;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

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

const QByteArray jsonType = "Content-Type: application/json\r\n";
const QByteArray claudeHeaders = jsonType + "X-Api-Key: k\r\nanthropic-version: 2023-06-01\r\n";

QByteArray claudeBody(const QString& prompt, bool streamed, bool webSearch = false)
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

QByteArray geminiBody(const QString& prompt)
{
    JsonWriter writer;
    writer.beginObject().key(u"contents").beginArray().beginObject();
    writer.key(u"parts").beginArray().beginObject().key(u"text").string(prompt);
    return writer.endObject().endArray().endObject().endArray().endObject().text();
}

QByteArray geminiURL(const StandInService& service, bool streamed)
{
    return service.geminiBaseURL() + (streamed
                                          ? "/gemini-3.6-flash:streamGenerateContent?key=k&alt=sse"
                                          : "/gemini-3.6-flash:generateContent?key=k");
}

const QString aPrompt = entryPrompt(EntryType::definition, u"serendipity"_s);

RawReply askClaude(const StandInService& service, const QString& prompt = aPrompt,
                   bool streamed = true, bool webSearch = false)
{
    return RawExchange(service.claudeEndpoint(), claudeHeaders,
                       claudeBody(prompt, streamed, webSearch))
        .readAll();
}

RawReply askGemini(const StandInService& service, const QString& prompt = aPrompt,
                   bool streamed = true)
{
    return RawExchange(geminiURL(service, streamed), jsonType, geminiBody(prompt)).readAll();
}

using EventText = std::optional<QString> (*)(json::Parser&, std::string_view);

/// The pieces of text in a streamed reply, as the application reads them.
QStringList pieces(const RawReply& reply, EventText eventText)
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

QString claudeText(const RawReply& reply)
{
    return pieces(reply, &claudeEventText).join(QString());
}
QString geminiText(const RawReply& reply)
{
    return pieces(reply, &geminiEventText).join(QString());
}

QString claudeMessageText(const RawReply& reply)
{
    json::Parser parser;
    return claudeReplyText(parser, reply.body().toStdString()).value_or(u"unreadable"_s);
}

QByteArrayList eventNames(const RawReply& reply)
{
    QByteArrayList names;
    for (const QByteArray& line : reply.lines()) {
        if (line.startsWith("event: "))
            names.append(line.sliced(7));
    }
    return names;
}

/// Where the event with the `count`th piece of text of an Anthropic reply begins.
qsizetype textEvent(const QByteArray& body, int count)
{
    qsizetype at = -1;
    for (int i = 0; i < count; ++i)
        at = body.indexOf("\"text_delta\"", at + 1);
    return body.lastIndexOf("event: ", at);
}

QString sourceText(const QString& path)
{
    QFile file(QFINDTESTDATA("../demo/library") + u'/' + path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

struct Collector final : HttpReceiver {
    bool onStatus(int statusCode) override
    {
        status = statusCode;
        return true;
    }
    bool onBytes(std::string_view bytes) override
    {
        body.append(bytes.data(), static_cast<qsizetype>(bytes.size()));
        return true;
    }

    int status = 0;
    QByteArray body;
};

} // namespace

class StandInServiceTest : public QObject {
    Q_OBJECT

private slots:
    void listensOnLoopbackOnly_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<QByteArray>("origin");
        QTest::newRow("IPv4") << u"127.0.0.1"_s << QByteArray("http://127.0.0.1:");
        QTest::newRow("another of the block") << u"127.8.0.1"_s << QByteArray("http://127.8.0.1:");
        QTest::newRow("name") << u"localhost"_s << QByteArray("http://localhost:");
        QTest::newRow("all addresses") << u"0.0.0.0"_s << QByteArray();
        QTest::newRow("all IPv6 addresses") << u"::"_s << QByteArray();
        QTest::newRow("a network") << u"192.168.0.1"_s << QByteArray();
        QTest::newRow("a host") << u"example.org"_s << QByteArray();
        QTest::newRow("a misleading host") << u"127.0.0.1.example.org"_s << QByteArray();
        QTest::newRow("misleading bytes") << u"1.0.0.127"_s << QByteArray();
        QTest::newRow("IPv4 in IPv6") << u"::ffff:10.0.0.1"_s << QByteArray();
        QTest::newRow("nothing") << QString() << QByteArray();
    }
    void listensOnLoopbackOnly()
    {
        QFETCH(QString, address);
        QFETCH(QByteArray, origin);
        QString error;
        const auto service = StandInService::start({.address = address}, &error);
        QCOMPARE(service != nullptr, !origin.isEmpty());
        QCOMPARE(error.isEmpty(), !origin.isEmpty());
        if (service)
            QVERIFY(service->claudeEndpoint().startsWith(origin));
    }

    void takenPort()
    {
        const auto first = StandInService::start();
        QVERIFY(first);
        const int port = QUrl(QString::fromLatin1(first->claudeEndpoint())).port();
        QString error;
        QVERIFY(!StandInService::start({.port = port}, &error));
        QVERIFY(error.contains(QString::number(port)));
    }

    void claudeStream()
    {
        const auto service = StandInService::start();
        const RawReply reply = askClaude(*service);
        QCOMPARE(reply.status, 200);
        QVERIFY(reply.complete);
        QCOMPARE(reply.contentType, "text/event-stream; charset=utf-8");
        QVERIFY(!reply.body().contains('\r'));
        QVERIFY(reply.body().contains("} }\n")); // a padded record
        QVERIFY(!reply.body().contains("[DONE]"));
        QCOMPARE(claudeText(reply),
                 u"<entry>"_s + sourceText(u"serendipity/definition.md"_s) + u"</entry>"_s);

        QByteArrayList names = eventNames(reply);
        QVERIFY(names.removeAll("content_block_delta") > 20);
        QCOMPARE(names, QByteArrayList({"message_start", "content_block_start", "ping",
                                        "content_block_stop", "message_delta", "message_stop"}));
    }

    void claudeWebSearch()
    {
        const auto service = StandInService::start();
        const RawReply streamed = askClaude(*service, aPrompt, true, true);
        QVERIFY(claudeText(streamed).startsWith("I'll look that up.<entry>"_L1));
        const QByteArray body = streamed.body();
        const qsizetype use = body.indexOf("server_tool_use");
        QVERIFY(use > 0);
        QVERIFY(body.indexOf("input_json_delta") > use);
        QVERIFY(body.indexOf("web_search_tool_result") > body.lastIndexOf("input_json_delta"));
        QVERIFY(body.lastIndexOf("text_delta") > body.indexOf("web_search_tool_result"));

        const RawReply whole = askClaude(*service, tocPrompt(u"stoicism"_s), false, true);
        QVERIFY(whole.body().contains("web_search_tool_result"));
        QCOMPARE(parseJSONArray(claudeMessageText(whole)).value_or(QStringList()).size(), 6);
    }

    void geminiStream_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("text in the last chunk")
            << QByteArray("<a>'b'&c") << QStringList{u"<a>'"_s, u"b'&c"_s, QString()};
        QTest::newRow("no text there")
            << QByteArray("abcdef<g>") << QStringList{u"abcd"_s, u"ef<g"_s, u">"_s};
    }
    void geminiStream()
    {
        QFETCH(QByteArray, text);
        const auto service = StandInService::start();
        service->setScript({.pieceLength = 4, .text = text});
        const RawReply reply = askGemini(*service);
        QVERIFY(reply.complete);
        QCOMPARE(reply.contentType, "text/event-stream");
        QTEST(pieces(reply, &geminiEventText), "expected");
        const QByteArray body = reply.body();
        QCOMPARE(body.count('\n'), body.count("\r\n"));
        QCOMPARE(body.count("\r\n\r\n"), body.count("data: "));
        QCOMPARE(body.count("\"finishReason\":\"STOP\""), 1);
        QVERIFY(body.lastIndexOf("data: ") < body.indexOf("finishReason"));
        QVERIFY(!body.contains('<'));
    }

    void wholeReplies()
    {
        const auto service = StandInService::start();
        service->setScript({.statusCode = 500}); // of no account here
        const QStringList sections = {u"Zeno and the Painted Porch"_s,
                                      u"Logic, Physics and Ethics"_s,
                                      u"What Is in Our Power"_s,
                                      u"The Roman Stoics"_s,
                                      u"Stoic Exercises"_s,
                                      u"A Long Afterlife"_s};
        const RawReply claude = askClaude(*service, tocPrompt(u"Stoicism"_s), false);
        QCOMPARE(claude.contentType, "application/json");
        QCOMPARE(parseJSONArray(claudeMessageText(claude)), sections);

        const RawReply gemini = askGemini(*service, tocPrompt(u"The Stoics "_s), false);
        QVERIFY(gemini.contentType.startsWith("application/json"));
        json::Parser parser;
        const auto text = geminiReplyText(parser, gemini.body().toStdString());
        QCOMPARE(parseJSONArray(text.value_or(u"unreadable"_s)), sections);

        service->setTOCScript({.statusCode = 503});
        QCOMPARE(askGemini(*service, tocPrompt(u"stoicism"_s), false).status, 503);
    }

    void claudeRefusals_data()
    {
        QTest::addColumn<QByteArray>("headers");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("type");
        const QByteArray version = "anthropic-version: 2023-06-01\r\n";
        const QByteArray key = "x-api-key: k\r\n";
        const QByteArray good = claudeBody(u"?"_s, true);
        const QByteArray invalid = "invalid_request_error";
        const auto without = [&good](const char* text, const char* other) {
            return QByteArray(good).replace(text, other);
        };
        QTest::newRow("no key") << jsonType + version << good << 401
                                << QByteArray("authentication_error");
        QTest::newRow("an empty key") << jsonType + version + "x-api-key: \r\n"
                                      << good << 401 << QByteArray("authentication_error");
        QTest::newRow("no version") << jsonType + key << good << 400 << invalid;
        QTest::newRow("no content type") << version + key << good << 400 << invalid;
        QTest::newRow("no JSON") << claudeHeaders << good.chopped(1) << 400 << invalid;
        QTest::newRow("an array") << claudeHeaders << QByteArray("[1]") << 400 << invalid;
        QTest::newRow("no limit") << claudeHeaders << without("max_tokens", "most") << 400
                                  << invalid;
        QTest::newRow("a limit in words")
            << claudeHeaders << without("2048", "\"many\"") << 400 << invalid;
        QTest::newRow("no messages")
            << claudeHeaders << without("messages", "letters") << 400 << invalid;
        QTest::newRow("a wrong role")
            << claudeHeaders << without("\"user\"", "\"system\"") << 400 << invalid;
        QTest::newRow("an unknown model") << claudeHeaders << without("claude-", "cloud-") << 404
                                          << QByteArray("not_found_error");
    }
    void claudeRefusals()
    {
        QFETCH(QByteArray, headers);
        QFETCH(QByteArray, body);
        QFETCH(QByteArray, type);
        const auto service = StandInService::start();
        const RawReply reply = RawExchange(service->claudeEndpoint(), headers, body).readAll();
        QTEST(reply.status, "status");
        QCOMPARE(reply.contentType, "application/json");
        QVERIFY(reply.complete);
        QVERIFY(reply.body().startsWith(R"({"type":"error","error":{"type":")" + type +
                                        R"(","message":")"));
    }

    void geminiRefusals_data()
    {
        QTest::addColumn<QByteArray>("target");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("type");
        const QByteArray events = "text/event-stream";
        const QByteArray record = "application/json; charset=UTF-8";
        const QByteArray good = geminiBody(u"?"_s);
        QTest::newRow("no key") << QByteArray("/gemini-3:streamGenerateContent?alt=sse") << good
                                << 403 << events;
        QTest::newRow("an empty key")
            << QByteArray("/gemini-3:streamGenerateContent?key=&alt=sse") << good << 403 << events;
        QTest::newRow("no key, whole")
            << QByteArray("/gemini-3:generateContent") << good << 403 << record;
        QTest::newRow("an unknown model")
            << QByteArray("/twins:generateContent?key=k") << good << 404 << record;
        QTest::newRow("an unknown method")
            << QByteArray("/gemini-3:sing?key=k") << good << 404 << record;
        QTest::newRow("no events")
            << QByteArray("/gemini-3:streamGenerateContent?key=k") << good << 400 << record;
        QTest::newRow("no contents")
            << QByteArray("/gemini-3:generateContent?key=k") << QByteArray("{}") << 400 << record;
        QTest::newRow("empty contents") << QByteArray("/gemini-3:generateContent?key=k")
                                        << QByteArray(R"({"contents":[]})") << 400 << record;
        QTest::newRow("wrong settings")
            << QByteArray("/gemini-3:generateContent?key=k")
            << good.chopped(1) + R"(,"generationConfig":{"maxOutputTokens":0}})" << 400 << record;
    }
    void geminiRefusals()
    {
        QFETCH(QByteArray, target);
        QFETCH(QByteArray, body);
        QFETCH(int, status);
        const auto service = StandInService::start();
        const RawReply reply =
            RawExchange(service->geminiBaseURL() + target, jsonType, body).readAll();
        QCOMPARE(reply.status, status);
        QTEST(reply.contentType, "type");
        QVERIFY(reply.body().startsWith(
            "{\n  \"error\": {\n    \"code\": " + QByteArray::number(status) + ",\n"));
        json::Parser parser;
        QVERIFY(
            !geminiErrorMessage(parser, reply.body().toStdString()).value_or(QString()).isEmpty());
    }

    void unknownPath()
    {
        const auto service = StandInService::start();
        const QByteArray url = service->claudeEndpoint() + "s";
        QCOMPARE(RawExchange(url, claudeHeaders, claudeBody(aPrompt, true)).readAll().status, 404);
    }

    void scriptedStatus_data()
    {
        QTest::addColumn<int>("status");
        for (const int status : {200, 204, 304, 400, 429, 500, 529, 599})
            QTest::addRow("%d", status) << status;
    }
    void scriptedStatus()
    {
        QFETCH(int, status);
        const auto service = StandInService::start();
        service->setScript({.statusCode = status, .body = QByteArray()});
        RawReply reply = askGemini(*service);
        QCOMPARE(reply.status, status);
        QCOMPARE(reply.body(), QByteArray());

        if (status < 400)
            return;
        service->setScript({.statusCode = status, .body = "Sorry.\n", .contentType = "text/plain"});
        reply = askGemini(*service);
        QCOMPARE(reply.status, status);
        QCOMPARE(reply.contentType, "text/plain");
        QCOMPARE(reply.body(), "Sorry.\n");

        service->setScript({.statusCode = status});
        reply = askClaude(*service);
        QCOMPARE(reply.status, status);
        QCOMPARE(reply.contentType, "application/json");
        QVERIFY(reply.body().startsWith(R"({"type":"error")"));
    }

    void portions_data()
    {
        QTest::addColumn<int>("length");
        QTest::newRow("single bytes") << 1;
        QTest::newRow("across lines") << 7;
        QTest::newRow("across events") << 100;
        QTest::newRow("all in one") << 100'000;
    }
    void portions()
    {
        QFETCH(int, length);
        const QByteArray recorded =
            "event: a\r\ndata: {}\r\n\r\ndata: \xc3\xa9\xff\n\n\n: comment\r\rno end";
        const auto service = StandInService::start();
        service->setScript({.writeLength = length, .body = recorded});
        const RawReply reply = askClaude(*service);
        QVERIFY(reply.complete);
        QCOMPARE(reply.body(), recorded);
        QCOMPARE(reply.chunks.size(), (recorded.size() + length - 1) / length);
        for (const QByteArray& chunk : reply.chunks.sliced(0, reply.chunks.size() - 1))
            QCOMPARE(chunk.size(), length);
    }

    void pieceLength_data()
    {
        QTest::addColumn<std::optional<int>>("length");
        QTest::addColumn<int>("shortest");
        QTest::addColumn<int>("longest");
        QTest::newRow("characters, pairs kept together") << std::optional(1) << 1 << 2;
        QTest::newRow("five") << std::optional(5) << 5 << 6;
        QTest::newRow("as usual") << std::optional<int>() << 12 << 25;
    }
    void pieceLength()
    {
        QFETCH(std::optional<int>, length);
        QFETCH(int, shortest);
        QFETCH(int, longest);
        const QString text = u"aé漢𝄞🙂z\n\"\\"_s.repeated(20);
        const auto service = StandInService::start();
        service->setScript({.pieceLength = length, .text = text.toUtf8()});
        for (const QStringList& found : {pieces(askClaude(*service), &claudeEventText),
                                         pieces(askGemini(*service), &geminiEventText)}) {
            QCOMPARE(found.join(QString()), text);
            for (const QString& piece : found.sliced(0, found.size() - 2))
                QVERIFY(piece.size() >= shortest && piece.size() <= longest);
        }
    }

    void crlf()
    {
        const auto service = StandInService::start();
        const QString plain = claudeText(askClaude(*service));
        service->setScript({.crlf = true});
        const RawReply reply = askClaude(*service);
        QCOMPARE(reply.body().count('\n'), reply.body().count("\r\n"));
        QCOMPARE(claudeText(reply), plain);
        QVERIFY(!askGemini(*service).body().contains("\r\r"));
    }

    void disturbances_data()
    {
        QTest::addColumn<Script>("script");
        QTest::addColumn<QByteArray>("mark");
        QTest::newRow("malformed")
            << Script{.malformedEvent = true} << QByteArray("\"delta\":{\"text\":\n\n");
        QTest::newRow("huge line") << Script{.hugeLineLength = 300'000} << QByteArray(200'000, 'x');
        QTest::newRow("error") << Script{.errorEvent = true} << QByteArray("event: error\n");
    }
    void disturbances()
    {
        QFETCH(Script, script);
        QFETCH(QByteArray, mark);
        const auto service = StandInService::start();
        const QString plain = claudeText(askClaude(*service));
        service->setScript(script);
        const RawReply reply = askClaude(*service);
        QVERIFY(reply.complete);
        const qsizetype at = reply.body().indexOf(mark);
        QVERIFY(at > textEvent(reply.body(), 1));
        QVERIFY(at < textEvent(reply.body(), 2));
        QCOMPARE(claudeText(reply), plain);

        qsizetype longest = 0;
        for (const QByteArray& line : reply.lines())
            longest = qMax(longest, line.size());
        if (script.hugeLineLength > 0)
            QCOMPARE(longest, script.hugeLineLength);
        QVERIFY(askGemini(*service).complete);
    }

    void drop_data()
    {
        QTest::addColumn<int>("events");
        QTest::newRow("at once") << 0;
        QTest::newRow("in mid-reply") << 3;
    }
    void drop()
    {
        QFETCH(int, events);
        const auto service = StandInService::start();
        service->setScript({.dropAfterEvents = events});
        const RawReply claude = askClaude(*service);
        QCOMPARE(claude.status, 200);
        QVERIFY(!claude.complete);
        QCOMPARE(pieces(claude, &claudeEventText).size(), events);
        QCOMPARE(pieces(askGemini(*service), &geminiEventText).size(), events);

        Collector collector;
        CurlHttpSession http;
        const auto failure = http.perform({.url = geminiURL(*service, true),
                                           .headers = {{"content-type", "application/json"}},
                                           .body = geminiBody(aPrompt)},
                                          collector, {});
        QVERIFY(failure); // what a client sees is no end but an error
    }

    void endsInTheMiddle_data()
    {
        QTest::addColumn<Script>("script");
        QTest::addColumn<int>("events");
        QTest::newRow("hanging") << Script{.hangAfterEvents = 2} << 2;
        QTest::newRow("pausing") << Script{.pauseAfterFirstEvent = 1h} << 1;
        QTest::newRow("between two events") << Script{.pace = 1h} << 0;
        QTest::newRow("hanging before the first event") << Script{.hangAfterEvents = 0} << 0;
    }
    void endsInTheMiddle()
    {
        QFETCH(Script, script);
        QFETCH(int, events);
        auto service = StandInService::start();
        service->setScript(script);
        RawExchange exchange(service->claudeEndpoint(), claudeHeaders, claudeBody(aPrompt, true));
        QVERIFY(exchange.readUntil("\r\n\r\n", 1));
        QVERIFY(exchange.readUntil("text_delta", events));
        service.reset();
        const RawReply reply = exchange.readAll();
        QVERIFY(!reply.complete);
        QCOMPARE(pieces(reply, &claudeEventText).size(), events);
    }

    void manyAtATime()
    {
        const auto service = StandInService::start();
        service->setScript({.hangAfterEvents = 1});
        std::vector<std::unique_ptr<RawExchange>> hanging;
        for (int i = 0; i < 20; ++i) {
            hanging.push_back(std::make_unique<RawExchange>(
                service->claudeEndpoint(), claudeHeaders, claudeBody(aPrompt, true)));
            QVERIFY(hanging.back()->readUntil("text_delta", 1));
        }
        service->setScript({});
        QVERIFY(askClaude(*service).complete);
    }

    void keepsRequests()
    {
        const auto service = StandInService::start();
        askClaude(*service);
        RawExchange(service->geminiBaseURL() + "/nothing?key=k", {}, "body").readAll();
        const QList<ReceivedRequest> requests = service->requests();
        QCOMPARE(requests.size(), 2);
        QCOMPARE(requests[0].path, "/v1/messages");
        QCOMPARE(requests[0].header("x-api-key"), "k");
        QCOMPARE(requests[0].header("X-Goog-Api-Key"), QByteArray());
        QCOMPARE(requests[0].headers.size(), 5); // host and content-length are the other two
        QCOMPARE(requests[0].body, claudeBody(aPrompt, true));
        QCOMPARE(requests[1].path, "/v1beta/models/nothing?key=k");
        QCOMPARE(requests[1].body, "body");
    }

    void tls()
    {
        auto service = StandInService::start({.tls = true});
        QVERIFY(service->claudeEndpoint().startsWith("https://"));
        const QString certificate = service->certificateFile();
        const HttpRequest request{.url = service->claudeEndpoint(),
                                  .headers = {{"x-api-key", "k"},
                                              {"anthropic-version", "2023-06-01"},
                                              {"content-type", "application/json"}},
                                  .body = claudeBody(aPrompt, true)};
        Collector collector;
        QVERIFY(!CurlHttpSession(certificate).perform(request, collector, {}));
        QCOMPARE(collector.status, 200);
        QVERIFY(collector.body.contains("message_stop"));

        QVERIFY(CurlHttpSession().perform(request, collector, {})); // not trusted
        QCOMPARE(service->requests().size(), 1);

        service->setScript({.dropAfterEvents = 1});
        QVERIFY(CurlHttpSession(certificate).perform(request, collector, {}));
        service.reset();
        QVERIFY(!QFile::exists(certificate));
    }

    void libraryIsWhole()
    {
        const EntryLibrary library;
        const QString source = QFINDTESTDATA("../demo/library");
        QDirIterator files(source, QDir::Files, QDirIterator::Subdirectories);
        int count = 0;
        while (files.hasNext()) {
            const QString path = files.next().sliced(source.size());
            ++count;
            const QByteArray name = QFile::encodeName(path);
            QVERIFY2(QFile::exists(u":/varno/library"_s + path), name.constData());
            const QString text = sourceText(path);
            const auto related = relatedTopicsText(text);
            QVERIFY2(related && !related->contains(u'\n'), name.constData());
            QVERIFY2(parseJSONArray(*related).value_or(QStringList()).size() >= 4,
                     name.constData());
            QVERIFY2(!cleanEntryText(text).isEmpty(), name.constData());
        }
        for (const LibraryTopic& topic : library.topics()) {
            count -= topic.definition.has_value() + topic.answer.has_value() +
                     topic.article.has_value() + static_cast<int>(topic.sections.size());
            QCOMPARE(topic.article.has_value(), topic.sections.size() >= 5);
            QCOMPARE(library.find(topic.title), &topic);
        }
        QCOMPARE(count, 0);
        QVERIFY(library.topics().size() >= 10);
    }

    void findsTopics_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<QString>("title");
        const QString rome = u"The History Of The Roman Empire"_s;
        QTest::newRow("case and blanks") << u"  sToiCism \n"_s << u"Stoicism"_s;
        QTest::newRow("title") << rome << rome;
        QTest::newRow("no article") << u"history of the  roman empire"_s << rome;
        QTest::newRow("short") << u"The Roman Empire"_s << rome;
        QTest::newRow("question") << u"How do vaccines work?"_s << u"How Do Vaccines Work"_s;
        QTest::newRow("alias") << u"Tides"_s << u"Why The Sea Has Tides Twice Daily"_s;
        QTest::newRow("article missing") << u"silk road"_s << u"The Silk Road"_s;
        QTest::newRow("part of a name") << u"roman"_s << QString();
        QTest::newRow("nothing") << QString() << QString();
        QTest::newRow("a path") << u"../stoicism"_s << QString();
    }
    void findsTopics()
    {
        QFETCH(QString, query);
        const EntryLibrary library;
        const LibraryTopic* topic = library.find(query);
        QTEST(topic ? topic->title : QString(), "title");
    }

    void allAliasesLead()
    {
        const EntryLibrary library;
        for (const QString& query : {u"black hole"_s, u"english"_s, u"english language"_s,
                                     u"longitude"_s, u"rome"_s, u"stoics"_s, u"vaccines"_s})
            QVERIFY2(library.find(query), qUtf8Printable(query));
    }

    void answersEachKind()
    {
        const auto service = StandInService::start();
        const auto entry = [&](const QString& prompt) {
            const QString text = claudeText(askClaude(*service, prompt));
            const qsizetype start = text.indexOf("<entry>"_L1) + 7;
            return text.endsWith("</entry>"_L1) ? text.sliced(start).chopped(8) : QString();
        };
        QCOMPARE(entry(entryPrompt(EntryType::shortAnswer, u"Black holes"_s)),
                 sourceText(u"black-holes/answer.md"_s));
        QCOMPARE(entry(entryPrompt(EntryType::full, u"black holes"_s)),
                 sourceText(u"black-holes/article.md"_s));
        QCOMPARE(entry(sectionPrompt(u"How Stars Collapse"_s, u"Black Holes"_s)),
                 sourceText(u"black-holes/sections/2 How Stars Collapse.md"_s));

        // An article alone gives its first paragraph where something shorter is asked for.
        const QString article = sourceText(u"the-history-of-the-roman-empire/article.md"_s);
        const QString answer = entry(entryPrompt(EntryType::shortAnswer, u"roman empire"_s));
        QCOMPARE(cleanEntryText(answer), article.section(u"\n\n"_s, 0, 0));
        QCOMPARE(relatedTopicsText(answer), relatedTopicsText(article));
    }

    void someEntriesHaveARemark()
    {
        const auto service = StandInService::start();
        const auto start = [&](const QString& topic) {
            const QString prompt = entryPrompt(EntryType::full, topic);
            return claudeText(askClaude(*service, prompt)).startsWith("<entry>"_L1);
        };
        QVERIFY(start(u"stoicism"_s));
        QVERIFY(!start(u"the stoics"_s + u"  "_s));
    }

    void saysWhatIsMissing_data()
    {
        QTest::addColumn<QString>("prompt");
        QTest::addColumn<QString>("missing");
        const QString topic = u"quantum \"soup\""_s;
        QTest::newRow("definition") << entryPrompt(EntryType::definition, topic) << topic;
        QTest::newRow("short answer") << entryPrompt(EntryType::shortAnswer, topic) << topic;
        QTest::newRow("article") << entryPrompt(EntryType::full, topic) << topic;
        QTest::newRow("kind") << entryPrompt(EntryType::full, u"Palimpsest"_s) << u"Palimpsest"_s;
        QTest::newRow("section") << sectionPrompt(u"Spoons"_s, u"Black Holes"_s) << u"Spoons"_s;
        QTest::newRow("section of nothing") << sectionPrompt(u"Spoons"_s, topic) << topic;
        QTest::newRow("another prompt") << u"Sing a song!"_s << u"Sing a song!"_s;
    }
    void saysWhatIsMissing()
    {
        QFETCH(QString, prompt);
        QFETCH(QString, missing);
        const auto service = StandInService::start();
        const QString text = geminiText(askGemini(*service, prompt));
        const qsizetype start = text.indexOf("<entry>"_L1);
        QVERIFY(start >= 0);
        const QString entry = cleanEntryText(text.sliced(start + 7));
        QVERIFY(entry.contains(missing));
        QVERIFY(entry.contains("demonstration"_L1));
        QVERIFY(entry.contains("Bioluminescence"_L1));
        const EntryLibrary library;
        const auto related = parseJSONArray(relatedTopicsText(text).value_or(QString()));
        QCOMPARE(related.value_or(QStringList()).size(), 5);
        for (const QString& title : *related)
            QVERIFY(library.find(title));
    }

    void noSectionsOfTheUnknown()
    {
        const auto service = StandInService::start();
        for (const QString& topic : {u"odd"_s, u"even"_s}) {
            const RawReply reply = askClaude(*service, tocPrompt(topic), false);
            QCOMPARE(parseJSONArray(claudeMessageText(reply)), QStringList());
        }
    }

    void readsPrompts_data()
    {
        QTest::addColumn<QString>("topic");
        QTest::newRow("plain") << u"stoicism"_s;
        QTest::newRow("quotes") << u"the \"great\" \"vowel\" shift\""_s;
        QTest::newRow("a placeholder") << u"%1 and %2"_s;
        QTest::newRow("the words of a prompt") << u"\". Include etymology if relevant. \"x"_s;
        QTest::newRow("the words of a section")
            << u"a\" section of an encyclopedia article about \"b"_s;
        QTest::newRow("another script") << u"ὁ λόγος 漢字 🙂"_s;
        QTest::newRow("lines") << u"one\ntwo"_s;
        QTest::newRow("nothing") << u""_s;
    }
    void readsPrompts()
    {
        QFETCH(QString, topic);
        for (const EntryType type :
             {EntryType::definition, EntryType::shortAnswer, EntryType::full})
            QCOMPARE(readPrompt(entryPrompt(type, topic)), Question(EntryQuestion{type, topic}));
        QCOMPARE(readPrompt(tocPrompt(topic)), Question(TOCQuestion{topic}));
        QCOMPARE(readPrompt(sectionPrompt(u"A \"name\""_s, topic)),
                 Question(SectionQuestion{u"A \"name\""_s, topic}));
    }

    void readsPromptsTypedByHand()
    {
        QCOMPARE(readPrompt(u"For the topic \"Rome\", please!"_s),
                 Question(TOCQuestion{u"Rome"_s}));
        QCOMPARE(
            readPrompt(u"Write the \"Roads\" section of an encyclopedia article about \"Rome\"."_s),
            Question(SectionQuestion{u"Roads"_s, u"Rome"_s}));
        QCOMPARE(readPrompt(u"Write the \"Roads\" song"_s), std::nullopt);
        QCOMPARE(readPrompt(u"For the topic \""_s), Question(TOCQuestion{QString()}));
    }
};

QTEST_GUILESS_MAIN(StandInServiceTest)
#include "StandInServiceTest.moc"
