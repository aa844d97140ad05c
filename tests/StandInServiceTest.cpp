#include "demo/ModelAnswer.h"
#include "platform/linux/CurlHttpSession.h"
#include "providers/JsonArray.h"
#include "tests/StandInClient.h"

#include <QFile>
#include <QTest>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

/// Keeps what comes.
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

HttpRequest claudeRequest(const StandInService& service)
{
    return {.url = service.claudeEndpoint(),
            .headers = {{"x-api-key", "k"},
                        {"anthropic-version", "2023-06-01"},
                        {"content-type", "application/json"}},
            .body = claudeBody(aPrompt, true)};
}

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
        QCOMPARE(claudeText(reply), modelAnswer(EntryLibrary(), aPrompt));

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
        const QString prompt = tocPrompt(u"stoicism"_s);
        const QString answer = modelAnswer(EntryLibrary(), prompt);
        const RawReply claude = askClaude(*service, prompt, false);
        QCOMPARE(claude.contentType, "application/json");
        QCOMPARE(claudeMessageText(claude), answer);

        const RawReply gemini = askGemini(*service, prompt, false);
        QVERIFY(gemini.contentType.startsWith("application/json"));
        json::Parser parser;
        QCOMPARE(geminiReplyText(parser, gemini.body().toStdString()), answer);

        service->setTOCScript({.statusCode = 503});
        QCOMPARE(askGemini(*service, prompt, false).status, 503);
    }

    void claudeRefusals_data()
    {
        QTest::addColumn<QByteArray>("headers");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("type");
        const QByteArray version = "anthropic-version: 2023-06-01\r\n";
        const QByteArray key = "x-api-key: k\r\n";
        const QByteArray good = claudeBody(u"?"_s, true);
        const auto refused = [](const char* name, const QByteArray& headers, const QByteArray& body,
                                int status, const QString& type) {
            QTest::newRow(name) << headers << body << status << type;
        };
        const auto malformed = [&](const char* name, const char* before, const char* after) {
            refused(name, claudeHeaders, QByteArray(good).replace(before, after), 400,
                    u"invalid_request_error"_s);
        };
        refused("no key", jsonType + version, good, 401, u"authentication_error"_s);
        refused("an empty key", jsonType + version + "x-api-key: \r\n", good, 401,
                u"authentication_error"_s);
        refused("no version", jsonType + key, good, 400, u"invalid_request_error"_s);
        refused("no content type", version + key, good, 400, u"invalid_request_error"_s);
        refused("an unknown model", claudeHeaders, QByteArray(good).replace("claude-", "cloud-"),
                404, u"not_found_error"_s);
        malformed("no JSON", "}", "");
        malformed("an array", good.constData(), "[1]");
        malformed("no limit", "max_tokens", "most");
        malformed("a limit in words", "2048", "\"many\"");
        malformed("no messages", "messages", "letters");
        malformed("a wrong role", "\"user\"", "\"system\"");
    }
    void claudeRefusals()
    {
        QFETCH(QByteArray, headers);
        QFETCH(QByteArray, body);
        const auto service = StandInService::start();
        const RawReply reply = RawExchange(service->claudeEndpoint(), headers, body).readAll();
        QTEST(reply.status, "status");
        QCOMPARE(reply.contentType, "application/json");
        QVERIFY(reply.complete);
        QTEST(claudeErrorType(reply), "type");
    }

    void geminiRefusals_data()
    {
        QTest::addColumn<QByteArray>("target");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("type");
        const QByteArray good = geminiBody(u"?"_s);
        const auto refused = [](const char* name, const QByteArray& target, const QByteArray& body,
                                int status, const QByteArray& type) {
            QTest::newRow(name) << target << body << status << type;
        };
        const QByteArray events = "text/event-stream";
        const QByteArray record = "application/json; charset=UTF-8";
        const QByteArray whole = "/gemini-3:generateContent?key=k";
        const QByteArray stream = "/gemini-3:streamGenerateContent";
        refused("no key", stream + "?alt=sse", good, 403, events);
        refused("an empty key", stream + "?key=&alt=sse", good, 403, events);
        refused("no key, whole", "/gemini-3:generateContent", good, 403, record);
        refused("an unknown model", "/twins:generateContent?key=k", good, 404, record);
        refused("an unknown method", "/gemini-3:sing?key=k", good, 404, record);
        refused("no events", stream + "?key=k", good, 400, record);
        refused("no contents", whole, "{}", 400, record);
        refused("empty contents", whole, "{\"contents\":[]}", 400, record);
        refused("wrong settings", whole,
                good.chopped(1) + ",\"generationConfig\":{\"maxOutputTokens\":0}}", 400, record);
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
        const auto message = geminiErrorMessage(parser, reply.body().toStdString());
        QVERIFY(!message.value_or(QString()).isEmpty());
    }

    void unknownPath()
    {
        const auto service = StandInService::start();
        const QByteArray url = service->claudeEndpoint() + "s";
        QCOMPARE(RawExchange(url, claudeHeaders, claudeBody(aPrompt, true)).readAll().status, 404);
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
        const HttpRequest request = claudeRequest(*service);
        Collector collector;
        QVERIFY(!CurlHttpSession(certificate).perform(request, collector, {}));
        QCOMPARE(collector.status, 200);
        QVERIFY(collector.body.contains("message_stop"));

        QVERIFY(CurlHttpSession().perform(request, collector, {})); // not trusted
        QCOMPARE(service->requests().size(), 1);
        service.reset();
        QVERIFY(!QFile::exists(certificate));
    }

    void cutConnectionIsAnError_data()
    {
        QTest::addColumn<bool>("tls");
        QTest::newRow("plain") << false;
        QTest::newRow("TLS") << true;
    }
    void cutConnectionIsAnError()
    {
        QFETCH(bool, tls);
        const auto service = StandInService::start({.tls = tls});
        service->setScript({.dropAfterEvents = 2});
        Collector collector;
        CurlHttpSession http(service->certificateFile());
        QVERIFY(http.perform(claudeRequest(*service), collector, {}));
        QCOMPARE(collector.body.count("text_delta"), 2);
    }
};

QTEST_GUILESS_MAIN(StandInServiceTest)
#include "StandInServiceTest.moc"
