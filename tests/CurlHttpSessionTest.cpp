#include "platform/linux/CurlHttpSession.h"

#include "demo/StandInService.h"
#include "tests/ScriptedServer.h"
#include "tests/Test.h"

#include <QSet>

#include <atomic>
#include <future>

using namespace std::chrono_literals;

namespace {

using Answer = ScriptedServer::Answer;

const QByteArray okReply = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok";
const QByteArray chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
const QByteArray timedOut = "[The request timed out.]";
const QByteArray lost = "[The connection to the server was lost.]";
const QByteArray damaged = "[The reply is damaged.]";

QByteArray packed(const QByteArray& encoding, const QByteArray& body)
{
    return "HTTP/1.1 200 OK\r\nContent-Encoding: " + encoding +
           "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
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
                 {"chunks and a trailer", chunked + "1\r\no\r\n1;x=y\r\nk\r\n0\r\nX-T: t\r\n\r\n",
                  "200 ok"},
                 {"until the end", "HTTP/1.0 200 OK\r\n\r\nok", "200 ok"},
                 {"no reason", "HTTP/1.1 529\r\nContent-Length: 2\r\n\r\nno", "529 no"},
                 {"after interim ones", informed + okReply, "200 ok"},
                 {"packed unasked", packed("gzip", gzip), "200 ok"},
                 {"deflated", packed("deflate", qCompress("ok").sliced(4)), "200 ok"},
                 {"packed, cut", packed("gzip", gzip).chopped(1), "200 ok" + lost},
                 {"another sum", packed("gzip", QByteArray(gzip).replace("\x47", "x")),
                  "200 ok" + damaged},
                 {"not packed", packed("gzip", "ok"), "200 " + damaged},
                 {"packed by nobody knows what", packed("mystery", "ok"), "200 " + damaged},
                 {"nothing", "", lost},
                 {"cut in the status line", "HTTP/1.1 20", lost},
                 {"cut in a header", "HTTP/1.1 200 OK\r\nContent-Le", lost},
                 {"cut after an interim one", informed, lost},
                 {"cut before the length", okReply.chopped(1), "200 o" + lost},
                 {"cut in a chunk", chunked + "9\r\nok", "200 ok" + lost},
                 {"cut before the last chunk", chunked + "2\r\nok\r\n", "200 ok" + lost},
                 {"no chunk", chunked + "?key=SECRET\r\n", "200 " + lost},
                 {"no HTTP", "220 ready for key=SECRET\r\n", "[Unsupported protocol]"}}) {
            const InRow row(name);
            QList<QByteArray> singleBytes;
            for (const char byte : response)
                singleBytes.append(QByteArray(1, byte));
            for (const QList<QByteArray>& pieces : {singleBytes, {response}}) {
                const ScriptedServer server({.pieces = pieces, .pause = 1ms});
                QCOMPARE(post(requestTo(server.url())), expected);
                QCOMPARE(server.connectionCount(), 1);
            }
        }
    }

    void refusedRequest()
    {
        const QByteArray good = "http://127.0.0.1:PORT/"; // where PORT stands for the server's
        const QByteArray key = "x-api-key";
        for (const auto& [name, url, header, value] :
             Rows<const char*, QByteArray, QByteArray, QByteArray>{
                 {"no address", "", key, "k"},
                 {"no host", "http://?key=SECRET", key, "k"},
                 {"no such port", "http://localhost:99999/?key=SECRET", key, "k"},
                 {"line break in the address", good + "?key=SECRET\r\nx: y", key, "k"},
                 {"zero in the address", good + QByteArray("\0?key=SECRET", 12), key, "k"},
                 {"file", "file:///etc/passwd?key=SECRET", key, "k"},
                 {"ftp", "ftp://127.0.0.1:PORT/?key=SECRET", key, "k"},
                 {"line break", good, key, "SECRET\r\nx-other: SECRET"},
                 {"zero", good, key, QByteArray("SECRET\0SECRET", 13)},
                 {"escape", good, key, "SECRET\x1b[0m"},
                 {"delete", good, key, "SECRET\x7f"},
                 {"line break in a name", good, "x\r\ny", "SECRET"}}) {
            const InRow row(name);
            const ScriptedServer server({.pieces = {okReply}});
            HttpRequest request = requestTo(QByteArray(url).replace("PORT", server.port()));
            request.headers = {{"x-a", "a"}, {header, value}};
            const QByteArray outcome = post(request);
            QVERIFY2(outcome.startsWith('[') && outcome.size() > 2, outcome.constData());
            QVERIFY2(!outcome.toUpper().contains("SECRET"), outcome.constData());
            QCOMPARE(server.connectionCount(), 0);
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
            QCOMPARE(server.connectionCount(), answered + 1);
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
            QCOMPARE(server.connectionCount(), 1);
        }
        QCOMPARE(other.connectionCount(), 0);
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
            const char* scheme = "http:";
        };
        const auto silent = [](const QByteArray& start) {
            return Answer{.pieces = {start}, .readsBody = false, .closes = false};
        };
        const auto slow = [](const QList<QByteArray>& pieces) {
            return Answer{.pieces = pieces, .pause = 1300ms};
        };
        const std::vector<Case> cases = {
            {"no answer", silent(""), timedOut},
            {"in the request", silent(""), timedOut, 1 << 24},
            {"in the handshake", silent(""), timedOut, 1, "https:"},
            {"in the head", silent("HTTP/1.1 200"), timedOut},
            {"in the body", silent("HTTP/1.1 200 OK\r\n\r\nhalf"), "200 half" + timedOut},
            {"slow head", slow({"HTTP/1.1 2", "0", "0", okReply.mid(12)}), "200 ok"},
            {"slow body", slow({"HTTP/1.1 200 OK\r\n\r\n", "s", "l", "ow"}), "200 slow"},
            {"slow chunk", slow({chunked + "2;", "x", "=", "\r\nok\r\n0\r\n\r\n"}), "200 ok"},
        };
        std::vector<std::future<QByteArray>> outcomes;
        outcomes.reserve(cases.size());
        for (const Case& current : cases)
            outcomes.push_back(std::async(std::launch::async, [&] {
                const ScriptedServer server(current.answer);
                HttpRequest request =
                    requestTo(server.url().replace("http:", current.scheme), current.bodySize);
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
            QCOMPARE(server.connectionCount(), 1);
        }
    }

    void manyAtOnce()
    {
        const ScriptedServer server({.pieces = {okReply}});
        std::atomic<int> wellDone = 0;
        {
            std::array<std::jthread, 8> threads;
            for (int thread = 0; thread < 8; ++thread)
                threads[thread] = std::jthread([&, thread] {
                    for (int i = 1; i <= 10; ++i)
                        wellDone += post(requestTo(server.url(), 10 * thread + i)) == "200 ok";
                });
        }
        QCOMPARE(wellDone.load(), 80);
        QSet<qsizetype> sizes;
        for (const ScriptedServer::Request& request : server.requests())
            sizes << request.body.size();
        QCOMPARE(sizes.size(), 80);
    }

    void certificates()
    {
        const QByteArray refused = "[The identity of the server could not be verified.]";
        for (const auto& [host, isTrusted, expected] :
             {std::tuple(u"127.0.0.1"_s, false, refused), // unknown
              std::tuple(u"127.0.0.2"_s, true, refused),  // the certificate is of another host
              std::tuple(u"127.0.0.1"_s, true, QByteArray("404 "))}) {
            const InRow row(host, isTrusted);
            const auto service = StandInService::start({.address = host, .tls = true});
            QVERIFY(service);
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
