#include "platform/posix/CurlHttpSession.h"

#include "demo/StandInService.h"
#include "tests/ScriptedServer.h"
#include "tests/Test.h"

#include <atomic>
#include <future>

using namespace std::chrono_literals;

namespace {

using Answer = ScriptedServer::Answer;

const QByteArray okReply = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok";
const QByteArray timedOut = "[The request timed out.]";
const QByteArray lost = "[The connection to the server was lost.]";
const QByteArray damaged = "[The reply is damaged.]";

QByteArray packed(const QByteArray& body)
{
    return "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n" + body;
}

/// Keeps a response as "200 body", and ends the transfer when `enough` of that has come.
class Recorder final : public HttpReceiver {
public:
    bool onStatus(int statusCode) override { return keep(QByteArray::number(statusCode) + ' '); }
    bool onBytes(std::string_view bytes) override
    {
        return keep(QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())));
    }

    qsizetype enough = std::numeric_limits<qsizetype>::max();
    QByteArray received;
    std::atomic<qsizetype> length = 0; ///< of what was received, for other threads

private:
    bool keep(const QByteArray& bytes)
    {
        received += bytes;
        length = received.size();
        return length < enough;
    }
};

HttpRequest requestTo(const QByteArray& url, qsizetype bodySize = 1)
{
    return {.url = url, .headers = {}, .body = QByteArray(bodySize, 'b')};
}

/// What was received, and the description of the failure in brackets if there was one.
QByteArray post(HttpSession& session, const HttpRequest& request, Recorder& recorder,
                std::stop_token stop = {})
{
    const auto failure = session.perform(request, recorder, std::move(stop));
    return recorder.received + (failure ? '[' + failure->description.toUtf8() + ']' : "");
}

} // namespace

class CurlHttpSessionTest : public QObject {
    Q_OBJECT

private:
    CurlHttpSession m_session;

    QByteArray post(const HttpRequest& request)
    {
        Recorder recorder;
        return ::post(m_session, request, recorder);
    }

private Q_SLOTS:
    void requestIsSentAsGiven()
    {
        const ScriptedServer server({.pieces = {okReply}});
        QByteArray body(1 << 21, 'b'); // libcurl would ask before it sends as much
        body.replace(0, 4, QByteArray("\0\r\n\xff", 4));
        QCOMPARE(post({.url = server.url("/v1?alt=sse&key=a%2Fb"),
                       .headers = {{"x-zebra", "z"},
                                   {"x-api-key", "k: \"1\", ü"},
                                   {"x-empty", ""},
                                   {"x-apple", "a"}},
                       .body = body}),
                 "200 ok");
        QCOMPARE(server.requests().size(), 1);
        const ScriptedServer::Request request = server.requests().constFirst();
        QCOMPARE(request.body, body);
        QVERIFY(request.head.startsWith("POST /v1?alt=sse&key=a%2Fb HTTP/1.1\r\n"));
        QVERIFY2(request.head.contains(
                     "\r\nx-zebra: z\r\nx-api-key: k: \"1\", ü\r\nx-empty:\r\nx-apple: a\r\n"),
                 request.head.constData());
        QVERIFY(request.head.contains("\r\nAccept-Encoding: identity\r\n"));
        for (const char* name : {"expect", "user-agent", "transfer-encoding"})
            QVERIFY2(!request.head.toLower().contains(name), name);
    }

    void response()
    {
        const QByteArray gzip = QByteArray::fromHex("1f8b0800000000000203cbcf060047dddc7902000000");
        const QByteArray informed = "HTTP/1.1 100 Continue\r\n\r\n"
                                    "HTTP/1.1 103 Early Hints\r\nLink: </s>\r\n\r\n";
        for (const auto& [name, response, expected] : Rows<const char*, QByteArray, QByteArray>{
                 {"length", okReply, "200 ok"},
                 {"until the end", "HTTP/1.0 200 OK\r\n\r\nok", "200 ok"},
                 {"no reason", "HTTP/1.1 529\r\nContent-Length: 2\r\n\r\nno", "529 no"},
                 {"after interim ones", informed + okReply, "200 ok"},
                 {"packed unasked", packed(gzip), "200 ok"},
                 {"not packed", packed("ok"), "200 " + damaged},
                 {"nothing", "", lost},
                 {"cut in a header", "HTTP/1.1 200 OK\r\nContent-Le", lost},
                 {"cut after an interim one", informed, lost},
                 {"cut in a chunk", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n9\r\nok",
                  "200 ok" + lost},
                 {"no HTTP", "220 ready for key=SECRET\r\n", "[Unsupported protocol]"}}) {
            const InRow row(name);
            QList<QByteArray> singleBytes;
            for (const char byte : response)
                singleBytes.append(QByteArray(1, byte));
            const ScriptedServer server({.pieces = singleBytes, .pause = 1ms});
            QCOMPARE(post(requestTo(server.url())), expected);
            QCOMPARE(server.requests().size(), 1);
        }
    }

    void refusedRequest()
    {
        const ScriptedServer server({.pieces = {okReply}});
        const QByteArray good = server.url("/");
        const QByteArray key = "x-api-key";
        for (const auto& [name, url, header, value] :
             Rows<const char*, QByteArray, QByteArray, QByteArray>{
                 {"no host", "http://?key=SECRET", key, "k"},
                 {"zero in the address", good + QByteArray("\0?key=SECRET", 12), key, "k"},
                 {"file", "file:///etc/passwd?key=SECRET", key, "k"},
                 {"line break", good, key, "SECRET\r\nx-other: SECRET"},
                 {"delete", good, key, "SECRET\x7f"},
                 {"line break in a name", good, "x\r\ny", "SECRET"}}) {
            const InRow row(name);
            HttpRequest request = requestTo(url);
            request.headers = {{"x-a", "a"}, {header, value}};
            const QByteArray outcome = post(request);
            QVERIFY2(outcome.startsWith('[') && outcome.size() > 2, outcome.constData());
            QVERIFY2(!outcome.toUpper().contains("SECRET"), outcome.constData());
            QCOMPARE(server.requests().size(), 0);
        }
    }

    void unreachableServer()
    {
        const QByteArray ended = ScriptedServer(Answer()).url();
        QCOMPARE(post(requestTo(ended)), "[Could not connect to the server.]");
        QCOMPARE(post(requestTo("http://secret.invalid/?key=SECRET")),
                 "[The server could not be found. Are you connected to the internet?]");
    }

    void nothingIsSentAgain()
    {
        for (const auto& [answered, readsBody] :
             Rows<int, bool>{{0, true}, {2, true}, {1, false}}) {
            const InRow row(answered, readsBody);
            // These keep the connection open, as if it could be used again.
            std::vector<Answer> answers(static_cast<std::size_t>(answered),
                                        {.pieces = {okReply}, .closes = false});
            answers.push_back({.pieces = {}, .readsBody = readsBody});
            const ScriptedServer server(answers);
            for (int i = 0; i < answered; ++i)
                QCOMPARE(post(requestTo(server.url())), "200 ok");
            QCOMPARE(post(requestTo(server.url(), 1 << 24)), lost);
            QCOMPARE(server.requests().size(), answered + 1);
        }
    }

    void redirectIsNotFollowed()
    {
        const ScriptedServer other({.pieces = {okReply}});
        for (const QByteArray status : {"301", "302", "303", "307", "308"}) {
            const ScriptedServer server(
                {.pieces = {"HTTP/1.1 " + status + " Moved\r\nLocation: " + other.url() +
                            "\r\nContent-Length: 4\r\n\r\nmove"}});
            QCOMPARE(post(requestTo(server.url())), status + " move");
            QCOMPARE(server.requests().size(), 1);
        }
        QCOMPARE(other.requests().size(), 0);
    }

    void receiverEndsTheTransfer()
    {
        // The server says no more: it would be a failure to wait for it.
        const ScriptedServer server(
            {.pieces = {"HTTP/1.1 500 No\r\nContent-Length: 8\r\n\r\n", "half"},
             .pause = 10ms,
             .closes = false});
        for (const QByteArray expected : {"500 ", "500 half"}) {
            Recorder recorder;
            recorder.enough = expected.size();
            QCOMPARE(::post(m_session, requestTo(server.url()), recorder), expected);
        }
    }

    void silenceTimesOutAndSlownessDoesNot()
    {
        struct Case {
            const char* name;
            Answer answer;
            QByteArray expected;
            qsizetype bodySize = 1;
        };
        const auto silent = [](const QByteArray& start) {
            return Answer{.pieces = {start}, .readsBody = false, .closes = false};
        };
        const std::vector<Case> cases = {
            {"no answer", silent(""), timedOut},
            {"in the request", silent(""), timedOut, 1 << 24},
            {"in the body", silent("HTTP/1.1 200 OK\r\n\r\nhalf"), "200 half" + timedOut},
            {"slow",
             {.pieces = {"HTTP/1.1 2", "00 OK\r\n\r\n", "s", "low"}, .pause = 1300ms},
             "200 slow"},
        };
        std::vector<std::future<QByteArray>> outcomes;
        outcomes.reserve(cases.size());
        for (const Case& current : cases)
            outcomes.push_back(std::async(std::launch::async, [&] {
                const ScriptedServer server(current.answer);
                HttpRequest request = requestTo(server.url(), current.bodySize);
                request.timeout = 2s;
                return post(request);
            }));
        for (std::size_t i = 0; i < cases.size(); ++i)
            QCOMPARE(cases[i].name + (": " + outcomes[i].get()),
                     cases[i].name + (": " + cases[i].expected));
    }

    void stopEndsTheTransfer()
    {
        for (const auto& [response, bodySize, received] : Rows<QByteArray, qsizetype, QByteArray>{
                 {"", 1, ""}, {"", 1 << 24, ""}, {okReply.chopped(1), 1, "200 o"}}) {
            const InRow row(response, bodySize);
            const ScriptedServer server(
                {.pieces = {response}, .readsBody = false, .closes = false});
            Recorder recorder;
            std::stop_source stop;
            const HttpRequest request = requestTo(server.url(), bodySize);
            std::future<QByteArray> outcome = std::async(std::launch::async, [&] {
                return ::post(m_session, request, recorder, stop.get_token());
            });
            QTRY_COMPARE(server.requests().size(), 1);
            QTRY_COMPARE(recorder.length.load(), received.size());
            stop.request_stop();
            QTRY_COMPARE(outcome.wait_for(0s), std::future_status::ready);
            QCOMPARE(outcome.get(), received + "[The request was cancelled.]");
            Recorder second; // and when it is stopped beforehand nothing is sent
            QCOMPARE(::post(m_session, request, second, stop.get_token()),
                     "[The request was cancelled.]");
            QCOMPARE(server.requests().size(), 1);
        }
    }

    void certificates()
    {
        const QByteArray refused = "[The identity of the server could not be verified.]";
        for (const auto& [host, isTrusted, expected] :
             {std::tuple(u"127.0.0.1"_s, false, refused), // unknown
              std::tuple(u"127.0.0.2"_s, true, refused),  // the certificate is of another host
              std::tuple(u"127.0.0.1"_s, true, QByteArray("404 "))}) {
            const InRow row(host, isTrusted);
            const auto service = std::get<0>(StandInService::start({.address = host, .tls = true}));
            CurlHttpSession session(isTrusted ? service->certificateFile() : QString());
            Recorder recorder;
            const QByteArray url = service->claudeEndpoint() + "/nowhere";
            QCOMPARE(::post(session, requestTo(url), recorder), expected);
            QCOMPARE(service->requests().size(), expected == refused ? 0 : 1);
        }
    }
};

VARNO_TEST(QCoreApplication, CurlHttpSessionTest)
#include "CurlHttpSessionTest.moc"
