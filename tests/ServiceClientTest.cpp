#include "core/Prompts.h"
#include "demo/StandInService.h"
#include "platform/fake/FakeKeyStore.h"
#include "platform/linux/CurlHttpSession.h"
#include "providers/ClaudeService.h"
#include "providers/GeminiService.h"
#include "tests/HttpByHand.h"
#include "tests/Received.h"
#include "tests/Scarcity.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>

#include <atomic>
#include <future>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

const QString secret = u"AIza-made-up-secret-0123"_s;

/// Both clients, with keys of their own, on a stand-in service.
struct Clients {
    explicit Clients(const StandInService::Settings& settings = {},
                     std::chrono::seconds longestSilence = std::chrono::hours(1))
        : timeout(longestSilence)
        , service(StandInService::start(settings))
        , http(settings.tls ? service->certificateFile() : QString())
    {
        keychain.save(secret, keychain.anthropicAccount);
        keychain.save(secret, keychain.geminiAccount);
    }

    [[nodiscard]] const ModelService& client(bool isGemini) const
    {
        return isGemini ? static_cast<const ModelService&>(gemini) : claude;
    }

    [[nodiscard]] Received ask(bool isGemini, bool webSearch = false) const
    {
        return receive(client(isGemini).streamEntry(
            {.prompt = entryPrompt(EntryType::definition, u"palimpsest"_s),
             .systemPrompt = entrySystemPrompt(),
             .model = isGemini ? u"gemini-3.6-flash"_s : u"claude-sonnet-5"_s,
             .webSearch = webSearch}));
    }

    [[nodiscard]] Result<QStringList> askTOC(bool isGemini) const
    {
        return receive(client(isGemini).generateTOC(
            u"Stoicism"_s, isGemini ? u"gemini-3.6-flash"_s : u"claude-sonnet-5"_s, true));
    }

    std::chrono::seconds timeout;
    std::unique_ptr<StandInService> service;
    CurlHttpSession http;
    FakeKeyStore store;
    KeychainService keychain{store};
    ClaudeService claude{service->claudeEndpoint(), http, keychain, timeout};
    GeminiService gemini{service->geminiBaseURL(), http, keychain, timeout};
};

/// Locked; its user says no, after some thought.
class LockedKeyStore final : public KeyStore {
public:
    void replace(const KeyName&, const QByteArray&) override {}
    void remove(const KeyName&) override {}
    [[nodiscard]] std::optional<QByteArray> find(const KeyName&, std::stop_token) const override
    {
        ++questions;
        refusal.wait();
        return std::nullopt;
    }
    [[nodiscard]] KeyGlance look(const KeyName&) const override { return {}; }

    mutable std::atomic<int> questions = 0;
    std::promise<void> user;
    std::shared_future<void> refusal{user.get_future()};
};

void addProviders()
{
    QTest::addColumn<bool>("isGemini");
    QTest::newRow("claude") << false;
    QTest::newRow("gemini") << true;
}

} // namespace

class ServiceClientTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void claudeRequest_data()
    {
        QTest::addColumn<bool>("webSearch");
        QTest::newRow("plain") << false;
        QTest::newRow("web search") << true;
    }
    void claudeRequest()
    {
        QFETCH(bool, webSearch);
        const Clients clients;
        QVERIFY(clients.ask(false, webSearch).error.isEmpty());
        const ReceivedRequest request = clients.service->requests().constFirst();
        QCOMPARE(request.path, QByteArray("/v1/messages"));
        QCOMPARE(request.header("x-api-key"), secret.toUtf8());
        QCOMPARE(request.header("anthropic-version"), QByteArray("2023-06-01"));
        QCOMPARE(request.header("content-type"), QByteArray("application/json"));
        QJsonObject expected{
            {u"model"_s, u"claude-sonnet-5"_s},
            {u"max_tokens"_s, webSearch ? 4096 : 2048},
            {u"stream"_s, true},
            {u"system"_s, entrySystemPrompt()},
            {u"messages"_s, QJsonArray{QJsonObject{{u"role"_s, u"user"_s},
                                                   {u"content"_s, entryPrompt(EntryType::definition,
                                                                              u"palimpsest"_s)}}}}};
        if (webSearch)
            expected[u"tools"_s] = QJsonArray{
                QJsonObject{{u"type"_s, u"web_search_20260209"_s}, {u"name"_s, u"web_search"_s}}};
        QCOMPARE(QJsonDocument::fromJson(request.body).object(), expected);
    }

    void geminiRequest_data() { claudeRequest_data(); }
    void geminiRequest()
    {
        QFETCH(bool, webSearch);
        const Clients clients;
        QVERIFY(clients.ask(true, webSearch).error.isEmpty());
        const ReceivedRequest request = clients.service->requests().constFirst();
        QCOMPARE(request.path, QByteArray("/v1beta/models/gemini-3.6-flash:streamGenerateContent"
                                          "?key=AIza-made-up-secret-0123&alt=sse"));
        QCOMPARE(request.header("content-type"), QByteArray("application/json"));
        QCOMPARE(request.header("x-api-key"), QByteArray());
        QCOMPARE(request.header("anthropic-version"), QByteArray());
        const auto parts = [](const QString& text) {
            return QJsonObject{{u"parts"_s, QJsonArray{QJsonObject{{u"text"_s, text}}}}};
        };
        QJsonObject expected{
            {u"contents"_s, QJsonArray{parts(entryPrompt(EntryType::definition, u"palimpsest"_s))}},
            {u"systemInstruction"_s, parts(entrySystemPrompt())},
            {u"generationConfig"_s, QJsonObject{{u"maxOutputTokens"_s, webSearch ? 4096 : 2048}}}};
        if (webSearch)
            expected[u"tools"_s] = QJsonArray{QJsonObject{{u"google_search"_s, QJsonObject()}}};
        QCOMPARE(QJsonDocument::fromJson(request.body).object(), expected);
    }

    void missingKeySendsNothing_data()
    {
        QTest::addColumn<bool>("isGemini");
        QTest::addColumn<bool>("emptyKey");
        QTest::addColumn<QString>("error");
        const QString claude =
            u"No API key found. Please add your Anthropic API key in Settings."_s;
        const QString gemini =
            u"No Gemini API key found. Please add your Google AI API key in Settings."_s;
        QTest::newRow("claude, none") << false << false << claude;
        QTest::newRow("claude, empty") << false << true << claude;
        QTest::newRow("gemini, none") << true << false << gemini;
        QTest::newRow("gemini, empty") << true << true << gemini;
    }
    void missingKeySendsNothing()
    {
        QFETCH(bool, isGemini);
        QFETCH(bool, emptyKey);
        QFETCH(QString, error);
        const Clients clients;
        const KeychainService& keychain = clients.keychain;
        const QString account = isGemini ? keychain.geminiAccount : keychain.anthropicAccount;
        keychain.remove(account);
        if (emptyKey)
            keychain.save(QString(), account);
        QCOMPARE(clients.ask(isGemini).error, error);
        QCOMPARE(clients.askTOC(isGemini), Result<QStringList>(Failure{error}));
        QVERIFY(clients.service->requests().isEmpty());

        keychain.save(u"a key"_s.remove(u' '), account); // takes effect at once
        QVERIFY(clients.ask(isGemini).error.isEmpty());
    }

    void articleAsksForItsKeyOnce()
    {
        LockedKeyStore store;
        const KeychainService keychain(store);
        HttpByHand http;
        const ClaudeService claude("https://example.invalid", http, keychain);
        const auto toc = claude.generateTOC(u"x"_s, u"x"_s, false);
        const auto stream = claude.streamEntry({});
        QSignalSpy tocEnd(toc.get(), &TOCRequest::finished);
        store.user.set_value();
        QVERIFY(receive(stream).error.startsWith(u"No API key found."_s));
        QTRY_COMPARE(tocEnd.size(), 1);
        QCOMPARE(store.questions.load(), 1);
    }

    void requestThatCannotStart_data()
    {
        QTest::addColumn<bool>("lacksThreads");
        QTest::newRow("no thread") << true;
        QTest::newRow("no descriptor") << false;
    }
    void requestThatCannotStart()
    {
        QFETCH(bool, lacksThreads);
        FakeKeyStore store;
        const KeychainService keychain(store);
        HttpByHand http;
        const ClaudeService claude("https://example.invalid", http, keychain);
        const auto descriptors = lacksThreads ? nullptr : std::make_unique<AllDescriptors>(4);
        const auto threads = lacksThreads ? std::make_unique<NoThreads>() : nullptr;
        const QString error = receive(claude.streamEntry({})).error;
        QVERIFY2(error.startsWith(u"Network error: There is no room"_s), qPrintable(error));
        QCOMPARE(receive(claude.generateTOC(u"x"_s, u"x"_s, false)),
                 Result<QStringList>(Failure{error}));
    }

    void geminiKeyThatIsNoPartOfAURL_data()
    {
        QTest::addColumn<QString>("key");
        for (const char16_t* key :
             {u"with blank", u"line\nend", u"caf\u00e9", u"a#b", u"a\"b", u"a<b", u"a[b", u"100%",
              u"%4", u"a\\b", u"a^b", u"a|b", u"a`b", u"a{b"})
            QTest::newRow(qPrintable(QString::fromUtf16(key))) << QString::fromUtf16(key);
    }
    void geminiKeyThatIsNoPartOfAURL()
    {
        QFETCH(QString, key);
        const Clients clients;
        clients.keychain.save(key, clients.keychain.geminiAccount);
        QCOMPARE(clients.ask(true).error, u"Response parse error: Invalid URL"_s);
        QVERIFY(clients.service->requests().isEmpty());
    }

    void geminiKeyGoesIntoTheURLAsItIs()
    {
        FakeKeyStore store;
        const KeychainService keychain(store);
        keychain.save(u"aZ09-._~!$&'()*+,;=:@/?%2F"_s, keychain.geminiAccount);
        HttpByHand http;
        QByteArray url;
        http.respond = [&](const HttpRequest& request, HttpReceiver& receiver) {
            url = request.url;
            receiver.onStatus(200);
            return std::nullopt;
        };
        const GeminiService gemini("https://example.invalid/v1beta/models", http, keychain);
        QVERIFY(receive(gemini.streamEntry({.model = u"m"_s})).error.isEmpty());
        QCOMPARE(url, QByteArray("https://example.invalid/v1beta/models/m:streamGenerateContent"
                                 "?key=aZ09-._~!$&'()*+,;=:@/?%2F&alt=sse"));
    }

    void claudeKeyThatIsNoHeader()
    {
        const Clients clients;
        clients.keychain.save(u"made-up\r\nx-other: header"_s, clients.keychain.anthropicAccount);
        const QString error = clients.ask(false).error;
        QVERIFY(error.startsWith(u"Network error: "_s));
        QVERIFY(!error.contains(u"made-up"_s));
        QVERIFY(clients.service->requests().isEmpty());
    }

    void textSurvivesEveryCut_data()
    {
        QTest::addColumn<bool>("isGemini");
        QTest::addColumn<int>("pieceLength");
        QTest::addColumn<int>("writeLength");
        QTest::addColumn<bool>("crlf");
        for (const bool isGemini : {false, true}) {
            for (const int pieceLength : {1, 7, 1000}) {
                for (const int writeLength : {1, 7, 100'000})
                    QTest::addRow("%s, pieces of %d, writes of %d", isGemini ? "gemini" : "claude",
                                  pieceLength, writeLength)
                        << isGemini << pieceLength << writeLength << (writeLength == 7);
            }
        }
    }
    void textSurvivesEveryCut()
    {
        QFETCH(bool, isGemini);
        QFETCH(int, pieceLength);
        QFETCH(int, writeLength);
        QFETCH(bool, crlf);
        const QString entry =
            u"The \"city\" \\ of 罗马 \U0001F3DB\u2028 e\u0301,\n\n<entry> again.\tEnd</entry>\n"_s;
        const Clients clients;
        clients.service->setScript({.pieceLength = pieceLength,
                                    .writeLength = writeLength,
                                    .crlf = crlf,
                                    .text = (u"I'll look <ent it up. <entry>"_s + entry).toUtf8()});
        const Received received = clients.ask(isGemini);
        QCOMPARE(received.error, QString());
        QCOMPARE(received.text(), entry);
    }

    void answerWithoutTheTagArrivesInOnePiece_data() { addProviders(); }
    void answerWithoutTheTagArrivesInOnePiece()
    {
        QFETCH(bool, isGemini);
        const Clients clients;
        clients.service->setScript({.pieceLength = 3, .text = "No tag <entry here."});
        QCOMPARE(clients.ask(isGemini).pieces, QStringList({u"No tag <entry here."_s}));
    }

    void statusCodes_data()
    {
        QTest::addColumn<bool>("isGemini");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("error");
        const QByteArray page = "<html>Sorry</html>";
        const auto claude = [&](int status, const QString& error) {
            QTest::addRow("claude %d", status) << false << status << page << error;
        };
        claude(401, u"Invalid API key. Please check your Anthropic API key in Settings."_s);
        claude(429, u"Rate limit reached. Please wait a moment, then try again."_s);
        claude(529, u"Anthropic's servers are overloaded. Please try again in a moment."_s);
        for (const int status : {201, 204, 301, 304, 307, 400, 403, 404, 413, 500, 503})
            claude(status, u"API error (HTTP %1). Please try again."_s.arg(status));

        const auto gemini = [](const char* name, int status, const QByteArray& body,
                               const QString& error) {
            QTest::newRow(name) << true << status << body << error;
        };
        const QByteArray json =
            "{\r\n  \"error\": {\r\n    \"code\": 400,\r\n    \"message\": \"Pass a “valid” key.\","
            "\r\n    \"status\": \"INVALID_ARGUMENT\"\r\n  }\r\n}\r\n";
        for (const int status : {400, 403, 404, 429, 503})
            gemini(qPrintable(u"gemini %1 with JSON"_s.arg(status)), status, json,
                   u"Gemini error: Pass a “valid” key."_s);
        gemini("gemini 400 with a page", 400, page,
               u"Gemini API error (HTTP 400). Please try again."_s);
        gemini("gemini 500 without a body", 500, QByteArray(),
               u"Gemini API error (HTTP 500). Please try again."_s);
        gemini("gemini 403 without a message", 403, R"({"error":{"code":403}})",
               u"Gemini API error (HTTP 403). Please try again."_s);
        gemini("gemini 302", 302, page, u"Gemini API error (HTTP 302). Please try again."_s);
        gemini("gemini quotes the key", 400,
               R"({"error":{"message":"key=AIza-made-up-secret-0123 is bad"}})",
               u"Gemini error: key=… is bad"_s);
    }
    void statusCodes()
    {
        QFETCH(bool, isGemini);
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(QString, error);
        const Clients clients;
        const Script script{.statusCode = status, .body = body, .contentType = "text/event-stream"};
        clients.service->setScript(script);
        clients.service->setTOCScript(script);
        const Received received = clients.ask(isGemini);
        QCOMPARE(received.error, error);
        QVERIFY(received.pieces.isEmpty());
        QCOMPARE(clients.askTOC(isGemini), Result<QStringList>(Failure{error}));
        QCOMPARE(clients.service->requests().size(), 2);
    }

    void brokenStreams_data()
    {
        QTest::addColumn<bool>("isGemini");
        QTest::addColumn<QByteArray>("trouble");
        QTest::addColumn<QString>("error");
        for (const bool isGemini : {false, true}) {
            const auto row = [&](const char* trouble, const QString& error = {}) {
                QTest::addRow("%s, %s", isGemini ? "gemini" : "claude", trouble)
                    << isGemini << QByteArray(trouble) << error;
            };
            row("drop", u"Network error: The connection to the server was lost."_s);
            row("hang", u"Network error: The request timed out."_s);
            row("pause");
            row("malformed event");
            row("error event");
            row("huge line");
        }
    }
    void brokenStreams()
    {
        QFETCH(bool, isGemini);
        QFETCH(QByteArray, trouble);
        Script script{.pieceLength = 8,
                      .text =
                          "<entry>one two three four five six seven eight nine ten eleven twelve"};
        if (trouble == "drop")
            script.dropAfterEvents = 6;
        else if (trouble == "hang")
            script.hangAfterEvents = 6;
        else if (trouble == "pause")
            script.pauseAfterFirstEvent = std::chrono::milliseconds(500);
        else if (trouble == "huge line")
            script.hugeLineLength = 20LL * 1024 * 1024;
        script.malformedEvent = trouble == "malformed event";
        script.errorEvent = trouble == "error event";

        const Clients clients({}, std::chrono::seconds(trouble == "hang" ? 2 : 3600));
        clients.service->setScript(script);
        const Received received = clients.ask(isGemini);
        QTEST(received.error, "error");
        const QString whole = u"one two three four five six seven eight nine ten eleven twelve"_s;
        if (received.error.isEmpty())
            QCOMPARE(received.text(), whole);
        else
            QVERIFY(whole.startsWith(received.text()));
        QVERIFY(trouble == "hang" || !received.text().isEmpty()); // its first piece may be late
    }

    void nothingListens_data() { addProviders(); }
    void nothingListens()
    {
        QFETCH(bool, isGemini);
        Clients clients;
        clients.service.reset();
        QCOMPARE(clients.ask(isGemini).error, u"Network error: Could not connect to the server."_s);
    }

    void tableOfContents_data()
    {
        QTest::addColumn<bool>("isGemini");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QStringList>("sections");
        for (const bool isGemini : {false, true}) {
            const char* name = isGemini ? "gemini" : "claude";
            QTest::addRow("%s, bare", name) << isGemini << QByteArray(R"(["Logic","Ethics"])")
                                            << QStringList({u"Logic"_s, u"Ethics"_s});
            QTest::addRow("%s, in a fence", name)
                << isGemini << QByteArray("Here:\n```json\n[\"Physics\"]\n```")
                << QStringList({u"Physics"_s});
            QTest::addRow("%s, no array", name) << isGemini << QByteArray("None.") << QStringList();
            QTest::addRow("%s, no range", name)
                << isGemini << QByteArray("no ] array [ here") << QStringList();
            QTest::addRow("%s, numbers", name) << isGemini << QByteArray("[1]") << QStringList();
        }
    }
    void tableOfContents()
    {
        QFETCH(bool, isGemini);
        QFETCH(QByteArray, answer);
        const Clients clients;
        clients.service->setTOCScript({.text = answer});
        const Result<QStringList> result = clients.askTOC(isGemini);
        QVERIFY(std::holds_alternative<QStringList>(result));
        QTEST(std::get<QStringList>(result), "sections");

        const ReceivedRequest request = clients.service->requests().constFirst();
        QVERIFY(request.body.contains("For the topic \\\"Stoicism\\\", generate"));
        QVERIFY(request.body.contains("4096"));
        QVERIFY(isGemini ? request.path.contains(":generateContent?key=") &&
                               !request.path.contains("alt=sse")
                         : request.body.contains("\"stream\":false"));
    }

    void replyThatIsNoReply_data() { addProviders(); }
    void replyThatIsNoReply()
    {
        QFETCH(bool, isGemini);
        const Clients clients;
        clients.service->setTOCScript({.body = "<html>A portal</html>"});
        const Result<QStringList> result = clients.askTOC(isGemini);
        QVERIFY(std::holds_alternative<Failure>(result));
        QVERIFY(std::get<Failure>(result).description.startsWith(u"Network error: "_s));
    }

    void overTLS_data() { addProviders(); }
    void overTLS()
    {
        QFETCH(bool, isGemini);
        const Clients clients({.tls = true});
        QVERIFY(clients.service->claudeEndpoint().startsWith("https:"));
        QVERIFY(clients.ask(isGemini).error.isEmpty());

        CurlHttpSession strangers;
        const ClaudeService claude(clients.service->claudeEndpoint(), strangers, clients.keychain);
        QCOMPARE(receive(claude.streamEntry({})).error,
                 u"Network error: The identity of the server could not be verified."_s);
        QCOMPARE(clients.service->requests().size(), 1);
    }

    void abandonedStreamIsReadToItsEnd()
    {
        FakeKeyStore store;
        const KeychainService keychain(store);
        keychain.save(secret, keychain.anthropicAccount);
        std::promise<void> abandoned;
        std::promise<bool> readOn;
        HttpByHand http;
        http.respond = [&](const HttpRequest&, HttpReceiver& receiver) -> std::optional<Failure> {
            abandoned.get_future().wait();
            bool wanted = receiver.onStatus(200);
            for (int i = 0; i < 100; ++i)
                wanted = wanted && receiver.onBytes("data: {\"type\":\"content_block_delta\","
                                                    "\"delta\":{\"type\":\"t\",\"text\":\"x\"}}\n");
            readOn.set_value(wanted);
            return std::nullopt;
        };
        const ClaudeService claude("https://example.invalid", http, keychain);
        claude.streamEntry({}).reset();
        abandoned.set_value();
        QVERIFY(readOn.get_future().get());
    }

    void endlessRepliesDoNotGrow_data() { addProviders(); }
    void endlessRepliesDoNotGrow()
    {
        QFETCH(bool, isGemini);
        FakeKeyStore store;
        const KeychainService keychain(store);
        keychain.save(secret, keychain.anthropicAccount);
        keychain.save(secret, keychain.geminiAccount);
        HttpByHand http;
        int blocks = 0;
        http.respond = [&](const HttpRequest&, HttpReceiver& receiver) -> std::optional<Failure> {
            const std::string text(1U << 20U, 'x');
            const std::string block =
                isGemini ? "data: {\"candidates\":[{\"content\":{\"parts\":[{\"text\":\"" + text +
                               "\"}]}}]}\r\n"
                         : "data: {\"type\":\"content_block_delta\",\"delta\":{\"type\":\"t\","
                           "\"text\":\"" +
                               text + "\"}}\n";
            receiver.onStatus(200);
            while (blocks < 1000 && receiver.onBytes(block))
                ++blocks;
            return std::nullopt;
        };
        const ClaudeService claude("https://example.invalid", http, keychain);
        const GeminiService gemini("https://example.invalid", http, keychain);
        const ModelService& client = isGemini ? static_cast<const ModelService&>(gemini) : claude;
        QCOMPARE(receive(client.streamEntry({})).error, u"Network error: The reply is too long."_s);
        QVERIFY(blocks < 100);
        blocks = 0;
        const auto toc = receive(client.generateTOC(u"x"_s, u"x"_s, false));
        QCOMPARE(toc, Result<QStringList>(Failure{u"Network error: The reply is too long."_s}));
        QVERIFY(blocks < 100);
    }

    void destroyingTheClientEndsItsCalls_data() { addProviders(); }
    void destroyingTheClientEndsItsCalls()
    {
        QFETCH(bool, isGemini);
        auto clients = std::make_unique<Clients>();
        clients->service->setScript({.hangAfterEvents = 1});
        clients->service->setTOCScript({.hangAfterEvents = 0});
        const QString model = isGemini ? u"gemini-3.6-flash"_s : u"claude-sonnet-5"_s;
        const auto stream = clients->client(isGemini).streamEntry(
            {.prompt = entryPrompt(EntryType::definition, u"palimpsest"_s),
             .systemPrompt = entrySystemPrompt(),
             .model = model});
        const auto toc = clients->client(isGemini).generateTOC(u"x"_s, model, false);
        QSignalSpy streamEnd(stream.get(), &EntryStream::finished);
        QSignalSpy tocEnd(toc.get(), &TOCRequest::finished);
        QTRY_COMPARE(clients->service->requests().size(), 2);
        QCOMPARE(streamEnd.size() + tocEnd.size(), 0);
        clients.reset(); // would wait for the end of the silence otherwise
        QTRY_COMPARE(streamEnd.size() + tocEnd.size(), 2);
    }
};

VARNO_TEST(QCoreApplication, ServiceClientTest)
#include "ServiceClientTest.moc"
