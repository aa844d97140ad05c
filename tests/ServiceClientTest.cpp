#include "demo/StandInService.h"
#include "demo/WireText.h"
#include "platform/posix/CurlHttpSession.h"
#include "tests/BothClients.h"
#include "tests/Scarcity.h"
#include "tests/Test.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>

#include <future>

namespace {

struct StandIn {
    std::unique_ptr<StandInService> service = std::get<0>(StandInService::start());
    CurlHttpSession http;
};

/// On a stand-in service.
struct Clients : StandIn, BothClients {
    explicit Clients(std::chrono::seconds timeout = std::chrono::hours(1))
        : BothClients(http, service->claudeEndpoint(), service->geminiBaseURL(), timeout)
    {
    }
};

/// A line of a streamed reply.
std::string streamedLine(bool isGemini, const std::string& text)
{
    return isGemini
               ? R"(data: {"candidates":[{"content":{"parts":[{"text":")" + text + "\"}]}}]}\r\n"
               : R"(data: {"type":"content_block_delta","delta":{"type":"t","text":")" + text +
                     "\"}}\n";
}

} // namespace

class ServiceClientTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void requests()
    {
        const Clients clients;
        const auto object = [&](QByteArray json) {
            json.replace('\'', '"').replace("PROMPT", quoted(clients.prompt));
            return QJsonDocument::fromJson(json.replace("SYSTEM", quoted(entrySystemPrompt())))
                .object();
        };
        for (const bool webSearch : {false, true}) {
            const InRow row(webSearch);
            const QByteArray tokens = webSearch ? "4096" : "2048";
            QVERIFY(clients.ask(false, webSearch).error.isEmpty());
            QVERIFY(clients.ask(true, webSearch).error.isEmpty());

            const ReceivedRequest claude = clients.service->requests()[webSearch ? 2 : 0];
            QCOMPARE(claude.path, "/v1/messages");
            QCOMPARE(claude.header("x-api-key"), clients.key.toUtf8());
            QCOMPARE(claude.header("anthropic-version"), "2023-06-01");
            QCOMPARE(claude.header("content-type"), "application/json");
            const QByteArray claudeTools =
                webSearch ? ",'tools':[{'type':'web_search_20260209','name':'web_search'}]" : "";
            QCOMPARE(QJsonDocument::fromJson(claude.body).object(),
                     object("{'model':'claude-sonnet-5','max_tokens':" + tokens +
                            ",'stream':true,'system':SYSTEM,"
                            "'messages':[{'role':'user','content':PROMPT}]" +
                            claudeTools + '}'));

            const ReceivedRequest gemini = clients.service->requests().constLast();
            QCOMPARE(gemini.path, "/v1beta/models/gemini-3.6-flash:streamGenerateContent"
                                  "?key=AIza-made-up-secret-0123&alt=sse");
            QCOMPARE(gemini.header("content-type"), "application/json");
            QCOMPARE(gemini.header("x-api-key") + gemini.header("anthropic-version"), "");
            const QByteArray geminiTools = webSearch ? ",'tools':[{'google_search':{}}]" : "";
            QCOMPARE(QJsonDocument::fromJson(gemini.body).object(),
                     object("{'contents':[{'parts':[{'text':PROMPT}]}],'systemInstruction':"
                            "{'parts':[{'text':SYSTEM}]},'generationConfig':{'maxOutputTokens':" +
                            tokens + "}" + geminiTools + '}'));
        }
    }

    void missingKeySendsNothing()
    {
        for (const bool isGemini : {false, true}) {
            const Clients clients;
            const auto& account =
                isGemini ? clients.keychain.geminiAccount : clients.keychain.anthropicAccount;
            for (const bool isEmpty : {false, true}) {
                const InRow row(isGemini, isEmpty);
                clients.keychain.remove(account);
                if (isEmpty)
                    clients.keychain.save(QString(), account);
                const QString error =
                    isGemini
                        ? u"No Gemini API key found. Please add your Google AI API key in Settings."_s
                        : u"No API key found. Please add your Anthropic API key in Settings."_s;
                QCOMPARE(clients.ask(isGemini).error, error);
                QCOMPARE(clients.askTOC(isGemini), Result<QStringList>(Failure{error}));
                QVERIFY(clients.service->requests().isEmpty());
            }
            clients.keychain.save(u"key"_s, account); // takes effect at once
            QVERIFY(clients.ask(isGemini).error.isEmpty());
        }
    }

    void requestThatCannotStart()
    {
        const ClientsByHand clients;
        const NoThreads none;
        const QString error = clients.ask(false).error;
        QVERIFY2(error.startsWith(u"Network error: There is no room"_s), qPrintable(error));
        QCOMPARE(clients.askTOC(false), Result<QStringList>(Failure{error}));
    }

    void geminiKeyGoesIntoTheURLAsItIs()
    {
        ClientsByHand clients;
        QByteArray url;
        clients.respond = [&](const HttpRequest& request, HttpReceiver& receiver) {
            url = request.url;
            receiver.onStatus(200);
            return std::nullopt;
        };
        const auto good = u"azAZ09-._~!$&'()*+,;=:@/?%2Fx"_s;
        for (const QString& key :
             {u"with blank"_s, u"line\nend"_s, u"caf\u00e9"_s, u"a#b"_s, u"a[b"_s, u"a@["_s,
              u"a{b"_s, u"100%"_s, u"%4"_s, u"%4g"_s, u"%g4"_s, u"a`b"_s, good}) {
            const InRow row(key);
            clients.keychain.save(key, clients.keychain.geminiAccount);
            QCOMPARE(clients.ask(true).error,
                     key == good ? QString() : u"Response parse error: Invalid URL"_s);
            QCOMPARE(url,
                     key == good
                         ? "https://example.invalid/gemini-3.6-flash:streamGenerateContent?key=" +
                               good.toLatin1() + "&alt=sse"
                         : QByteArray());
        }
    }

    void textSurvivesEveryCut()
    {
        const QString entry =
            u"The \"city\" \\ of 罗马 \U0001F3DB\u2028 e\u0301,\n\n<entry> again.\tEnd</entry>\n"_s;
        const Clients clients;
        for (const bool isGemini : {false, true}) {
            for (const int pieceLength : {1, 7, 1000}) {
                for (const int writeLength : {1, 7, 100'000}) {
                    const InRow row(isGemini, pieceLength, writeLength);
                    clients.service->setScript(
                        {.pieceLength = pieceLength,
                         .writeLength = writeLength,
                         .crlf = writeLength == 7,
                         .text = (u"I'll look <ent it up. <entry>"_s + entry).toUtf8()});
                    const Received received = clients.ask(isGemini);
                    QCOMPARE(received.error, QString());
                    QCOMPARE(received.text(), entry);
                }
            }
            clients.service->setScript({.pieceLength = 3, .text = "No tag <entry here."});
            QCOMPARE(clients.ask(isGemini).pieces, QStringList({u"No tag <entry here."_s}));
        }
    }

    void statusCodes()
    {
        const QByteArray page = "<html>Sorry</html>";
        const QString claude = u"API error (HTTP %1). Please try again."_s;
        const QString gemini = u"Gemini "_s + claude;
        const Clients clients;
        for (const auto& [isGemini, status, body, message] : Rows<bool, int, QByteArray, QString>{
                 {false, 401, page,
                  u"Invalid API key. Please check your Anthropic API key in Settings."_s},
                 {false, 429, page, u"Rate limit reached. Please wait a moment, then try again."_s},
                 {false, 529, page,
                  u"Anthropic's servers are overloaded. Please try again in a moment."_s},
                 {false, 201, page, claude},
                 {false, 307, page, claude},
                 {true, 302, page, gemini},
                 {true, 403, R"({"error":{"code":403}})", gemini},
                 {true, 503, R"({"error": {"code": 503, "message": "A “valid” key."}})",
                  u"Gemini error: A “valid” key."_s},
                 {true, 400, R"({"error":{"message":"key=AIza-made-up-secret-0123 is bad"}})",
                  u"Gemini error: key=… is bad"_s}}) {
            const InRow row(isGemini, status, body);
            const Script script{
                .statusCode = status, .body = body, .contentType = "text/event-stream"};
            clients.service->setScript(script);
            clients.service->setTOCScript(script);
            const auto requests = clients.service->requests().size();
            const QString error = QString(message).replace(u"%1"_s, QString::number(status));
            const Received received = clients.ask(isGemini);
            QCOMPARE(received.error, error);
            QVERIFY(received.pieces.isEmpty());
            QCOMPARE(clients.askTOC(isGemini), Result<QStringList>(Failure{error}));
            QCOMPARE(clients.service->requests().size(), requests + 2);
        }
    }

    void brokenStreams()
    {
        struct Row {
            const char* name;
            Script script;
            QString error = {};
        };
        const QList<Row> rows = {
            {"drop",
             {.dropAfterEvents = 6},
             u"Network error: The connection to the server was lost."_s},
            {"hang", {.hangAfterEvents = 6}, u"Network error: The request timed out."_s},
            {"malformed event", {.malformedEvent = true}},
            {"error event", {.errorEvent = true}},
            {"huge line", {.hugeLineLength = 20LL * 1024 * 1024}}};
        const QString whole = u"one two three four five six seven eight nine ten eleven twelve"_s;
        for (const bool isGemini : {false, true}) {
            for (const auto& [name, trouble, error] : rows) {
                const InRow row(name, isGemini);
                const Clients clients(std::chrono::seconds(trouble.hangAfterEvents ? 2 : 3600));
                Script script = trouble;
                script.pieceLength = 8;
                script.text = "<entry>" + whole.toUtf8();
                clients.service->setScript(script);
                const Received received = clients.ask(isGemini);
                QCOMPARE(received.error, error);
                QVERIFY(whole.startsWith(received.text()));
                QVERIFY(!error.isEmpty() || received.text() == whole);
                // The first piece before a silence may be late.
                QVERIFY(trouble.hangAfterEvents || !received.text().isEmpty());
            }
        }
    }

    void tableOfContents()
    {
        for (const bool isGemini : {false, true}) {
            const Clients clients;
            for (const auto& [answer, sections] : Rows<QByteArray, QStringList>{
                     {"Here:\n```json\n[\"Logic\",\"Ethics\"]\n```", {u"Logic"_s, u"Ethics"_s}},
                     {"no ] array [ here", {}},
                     {"[1]", {}}}) {
                const InRow row(isGemini, answer);
                clients.service->setTOCScript({.text = answer});
                QCOMPARE(clients.askTOC(isGemini), Result<QStringList>(sections));
            }
            const ReceivedRequest request = clients.service->requests().constFirst();
            QVERIFY(request.body.contains("For the topic \\\"Stoicism\\\", generate"));
            QVERIFY(request.body.contains("4096"));
            QVERIFY(isGemini ? request.path.contains(":generateContent?key=") &&
                                   !request.path.contains("alt=sse")
                             : request.body.contains("\"stream\":false"));

            clients.service->setTOCScript({.body = "<html>A portal</html>"});
            const Result<QStringList> result = clients.askTOC(isGemini);
            const auto* failure = std::get_if<Failure>(&result);
            QVERIFY(failure && failure->description.startsWith(u"Network error: "_s));
        }
    }

    void abandonedStreamIsReadToItsEnd()
    {
        std::promise<void> abandoned;
        std::promise<bool> readOn;
        ClientsByHand clients;
        clients.respond = [&](const HttpRequest&, HttpReceiver& receiver) {
            abandoned.get_future().wait();
            readOn.set_value(receiver.onStatus(200) && receiver.onBytes(streamedLine(false, "x")) &&
                             receiver.onBytes(streamedLine(false, "y")));
            return std::nullopt;
        };
        clients.stream(false).reset();
        abandoned.set_value();
        QVERIFY(readOn.get_future().get());
    }

    void endlessRepliesDoNotGrow()
    {
        const std::string text(1 << 20, 'x');
        for (const bool isGemini : {false, true}) {
            const InRow row(isGemini);
            const std::string block = streamedLine(isGemini, text);
            ClientsByHand clients;
            int blocks = 0;
            clients.respond = [&](const HttpRequest&, HttpReceiver& receiver) {
                receiver.onStatus(200);
                for (blocks = 0; blocks < 1000 && receiver.onBytes(block);)
                    ++blocks;
                return std::nullopt;
            };
            const QString error = u"Network error: The reply is too long."_s;
            QCOMPARE(clients.ask(isGemini).error, error);
            QVERIFY(blocks < 100);
            QCOMPARE(clients.askTOC(isGemini), Result<QStringList>(Failure{error}));
            QVERIFY(blocks < 100);
        }
    }

    void destroyingTheClientEndsItsCalls()
    {
        for (const bool isGemini : {false, true}) {
            auto clients = std::make_unique<Clients>();
            clients->service->setScript({.hangAfterEvents = 1});
            clients->service->setTOCScript({.hangAfterEvents = 0});
            const auto stream = clients->stream(isGemini);
            const auto toc = clients->toc(isGemini);
            QSignalSpy streamEnd(stream.get(), &EntryStream::finished);
            QSignalSpy tocEnd(toc.get(), &TOCRequest::finished);
            QTRY_COMPARE(clients->service->requests().size(), 2);
            QCOMPARE(streamEnd.size() + tocEnd.size(), 0);
            clients.reset(); // would wait for the end of the silence otherwise
            QTRY_COMPARE(streamEnd.size() + tocEnd.size(), 2);
        }
    }
};

VARNO_TEST(QCoreApplication, ServiceClientTest)
#include "ServiceClientTest.moc"
