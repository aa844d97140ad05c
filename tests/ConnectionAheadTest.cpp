#include "demo/SlowRelay.h"
#include "demo/StandInService.h"
#include "platform/posix/CurlHttpSession.h"
#include "tests/BothClients.h"
#include "tests/ScriptedServer.h"
#include "tests/Test.h"

#include <atomic>
#include <future>

using namespace std::chrono_literals;

namespace {

const QByteArray okReply = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok";

class StatusReader final : public HttpReceiver {
public:
    bool onStatus(int statusCode) override
    {
        status = statusCode;
        return true;
    }
    bool onBytes(std::string_view) override { return true; }

    int status = 0;
};

HttpRequest requestTo(const QByteArray& url, qsizetype bodySize = 1)
{
    return {
        .url = url,
        .headers = {{"content-type", "text/plain"}, {"x-api-key", "k: \"1\", ü"}, {"x-empty", ""}},
        .body = QByteArray(bodySize, 'b')};
}

/// The status of the response, or what went wrong.
QByteArray post(HttpSession& session, HttpRequest request, const std::stop_token& stop = {})
{
    StatusReader reader;
    request.takesConnectionMadeAhead = true;
    const auto failure = session.perform(request, reader, stop);
    return failure ? failure->description.toUtf8() : QByteArray::number(reader.status);
}

/// A connection that is being made and held in the background.
struct Ahead {
    Ahead(HttpSession& session, const QByteArray& url, std::chrono::milliseconds lifetime = 1h)
        : thread([&session, url, lifetime](const std::stop_token& stop) {
            session.connectAhead(url, lifetime, stop);
        })
    {
    }
    std::jthread thread;
};

} // namespace

class ConnectionAheadTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void requestGoesOutOnceAndWhole()
    {
        const auto service = std::get<0>(StandInService::start({.tls = true}));
        CurlHttpSession session(service->certificateFile());
        for (const qsizetype size : {0, 1, 1 << 21}) {
            const InRow row(size);
            const SlowRelay relay(service->claudeEndpoint(), 5ms);
            const HttpRequest request = requestTo(relay.url() + "/nowhere?alt=sse&key=a%2Fb", size);
            const qsizetype before = service->requests().size();
            Ahead ahead(session, relay.url());
            QTRY_COMPARE(relay.connectionCount(), 1);
            QCOMPARE(post(session, request), "404");
            QCOMPARE(relay.connectionCount(), 1);
            QCOMPARE(post(session, request), "404"); // on a connection of its own
            QCOMPARE(relay.connectionCount(), 2);
            QCOMPARE(service->requests().size(), before + 2);
            const ReceivedRequest held = service->requests().at(before);
            const ReceivedRequest ordinary = service->requests().at(before + 1);
            QCOMPARE(held.path, ordinary.path);
            QCOMPARE(held.headers, ordinary.headers);
            QCOMPARE(held.body, request.body);
        }
    }

    void requestThatDoesNotGoOutOnIt()
    {
        enum What { expired, stopped, closed, otherHost };
        for (const What what : {expired, stopped, closed, otherHost}) {
            const InRow row(what);
            ScriptedServer server({.pieces = {okReply}});
            const ScriptedServer other({.pieces = {okReply}});
            CurlHttpSession session;
            Ahead ahead(session, server.url(), what == expired ? 50ms : 1h);
            QTRY_COMPARE(server.connectionCount(), 1);
            if (what == stopped)
                ahead.thread.request_stop();
            if (what == closed)
                server.closeConnections();
            if (what == expired || what == stopped)
                ahead.thread.join();
            const ScriptedServer& asked = what == otherHost ? other : server;
            QCOMPARE(post(session, requestTo(asked.url())), "200");
            ahead.thread.request_stop();
            QTRY_COMPARE(server.requests().size() + other.requests().size(), 2);
            QList<QByteArray> bodies; // that of the held connection was read to its end, too
            for (const auto& request : server.requests() + other.requests())
                bodies << (request.head.isEmpty() ? "nothing" : request.body);
            std::sort(bodies.begin(), bodies.end());
            QCOMPARE(bodies, QList<QByteArray>({"b", "nothing"}));
        }
    }

    void failureAfterTheReleaseIsOne()
    {
        const ScriptedServer server(ScriptedServer::Answer{});
        CurlHttpSession session;
        const Ahead ahead(session, server.url());
        QTRY_COMPARE(server.connectionCount(), 1);
        QCOMPARE(post(session, requestTo(server.url())), "The connection to the server was lost.");
        QCOMPARE(server.connectionCount(), 1);
    }

    void stopWhileConnecting()
    {
        const ScriptedServer server({.pieces = {}, .closes = false});
        const QByteArray url = server.url().replace("http:", "https:"); // no handshake comes
        CurlHttpSession session;
        const Ahead ahead(session, url);
        QTRY_COMPARE(server.connectionCount(), 1);
        std::stop_source stop;
        auto outcome = std::async(std::launch::async,
                                  [&] { return post(session, requestTo(url), stop.get_token()); });
        QCOMPARE(outcome.wait_for(50ms), std::future_status::timeout); // for the connection
        stop.request_stop();
        QCOMPARE(outcome.get(), "The request was cancelled.");
        QCOMPARE(server.connectionCount(), 1);
    }

    void servicesPrepareForAnEntry()
    {
        ClientsByHand byHand;
        QList<bool> taking;
        byHand.respond = [&](const HttpRequest& request, HttpReceiver&) {
            taking << request.takesConnectionMadeAhead;
            return Failure{};
        };
        const ScriptedServer server(ScriptedServer::Answer{});
        CurlHttpSession session;
        const BothClients clients(session, server.url(), server.url(), 60s);
        for (const bool isGemini : {false, true}) {
            const InRow row(isGemini);
            clients.client(isGemini).prepare({});
            QTRY_COMPARE(server.connectionCount(), isGemini ? 2 : 1);
            static_cast<void>(byHand.ask(isGemini));
            static_cast<void>(byHand.askTOC(isGemini)); // nobody waits for that one
            QCOMPARE(taking, QList<bool>({true, false}));
            taking.clear();
        }
    }

    void nothingIsSentTwice()
    {
        constexpr int count = 40;
        const ScriptedServer server({.pieces = {okReply}});
        CurlHttpSession session;
        std::atomic<int> answered = 0;
        {
            const std::jthread ahead([&](const std::stop_token& stop) {
                for (int i = 0; i < 4 * count; ++i)
                    session.connectAhead(server.url(), i % 8 * 1ms, stop);
            });
            const std::jthread closer([&](const std::stop_token& stop) {
                for (; !stop.stop_requested(); std::this_thread::sleep_for(7ms))
                    server.closeConnections();
            });
            std::array<std::jthread, 4> threads;
            for (int thread = 0; thread < 4; ++thread)
                threads[thread] = std::jthread([&, thread] {
                    for (int i = 0; i < count; ++i) {
                        const QByteArray url =
                            server.url("/" + QByteArray::number(thread * count + i));
                        answered += post(session, requestTo(url)) == "200";
                    }
                });
        }
        QList<QByteArray> lines;
        for (const ScriptedServer::Request& request : server.requests())
            if (request.head.endsWith("\r\n\r\n")) // the others were not used, or broke off
                lines << request.head.split('\r').constFirst();
        QVERIFY(answered > 0 && answered <= lines.size());
        QCOMPARE(QSet<QByteArray>(lines.begin(), lines.end()).size(), lines.size());
    }
};

VARNO_TEST(QCoreApplication, ConnectionAheadTest)
#include "ConnectionAheadTest.moc"
