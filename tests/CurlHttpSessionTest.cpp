#include "platform/linux/CurlHttpSession.h"

#include "tests/ScriptedServer.h"

#include <QFile>
#include <QProcess>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <QStandardPaths>
#include <QStringList>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

#include <future>

using namespace varno;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Script = ScriptedServer::Script;
using End = ScriptedServer::End;
using Reads = ScriptedServer::Reads;
using Outcome = std::optional<Failure>;

const QByteArray okReply = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok";
const QString timedOut = u"The request timed out."_s;
const QString connectionLost = u"The connection to the server was lost."_s;

class Recorder final : public HttpReceiver {
public:
    bool onStatus(int statusCode) override
    {
        statuses << statusCode;
        bodyCameFirst = !body.isEmpty();
        return wantsBody;
    }

    bool onBytes(std::string_view bytes) override
    {
        body.append(bytes.data(), static_cast<qsizetype>(bytes.size()));
        return body.size() < enough;
    }

    bool wantsBody = true;
    qsizetype enough = std::numeric_limits<qsizetype>::max();
    QList<int> statuses;
    QByteArray body;
    bool bodyCameFirst = false;
};

HttpRequest requestTo(const QByteArray& url, const QByteArray& body = {},
                      std::chrono::seconds timeout = std::chrono::minutes(1))
{
    return {.url = url, .headers = {}, .body = body, .timeout = timeout};
}

Outcome post(const HttpRequest& request, HttpReceiver& receiver, std::stop_token stop = {})
{
    CurlHttpSession session;
    return session.perform(request, receiver, std::move(stop));
}

Outcome post(const HttpRequest& request)
{
    Recorder recorder;
    return post(request, recorder);
}

QString text(const Outcome& outcome)
{
    return outcome ? outcome->description : QString();
}

std::vector<ScriptedServer::Piece> singleBytes(const QByteArray& bytes)
{
    std::vector<ScriptedServer::Piece> pieces;
    for (const char byte : bytes)
        pieces.push_back({.bytes = QByteArray(1, byte), .after = 1ms});
    return pieces;
}

/// A port of the loopback interface that answers no call: the queue of callers is full.
class BusyPort {
public:
    BusyPort()
    {
        m_server.setListenBacklogSize(1);
        m_server.listen(QHostAddress::LocalHost);
        m_server.pauseAccepting();
        for (QTcpSocket& caller : m_callers)
            caller.connectToHost(QHostAddress::LocalHost, m_server.serverPort());
        while (m_callers.front().state() != QAbstractSocket::ConnectedState ||
               m_callers[1].state() != QAbstractSocket::ConnectedState)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    [[nodiscard]] QByteArray url() const
    {
        return "http://127.0.0.1:" + QByteArray::number(m_server.serverPort()) + "/?key=SECRET";
    }

private:
    QTcpServer m_server;
    std::array<QTcpSocket, 4> m_callers;
};

/// A port of the loopback interface where nobody listens, kept from others.
class ClosedPort {
public:
    ClosedPort() { m_socket.bind(QHostAddress::LocalHost); }
    [[nodiscard]] QByteArray url() const
    {
        return "http://127.0.0.1:" + QByteArray::number(m_socket.localPort()) + "/?key=SECRET";
    }

private:
    QTcpSocket m_socket;
};

/// An HTTPS server with a certificate of its own making. Needs the event loop.
class TlsServer {
public:
    explicit TlsServer(const QString& subjectAlternativeName)
    {
        QProcess openssl;
        openssl.start(u"openssl"_s, {u"req"_s, u"-x509"_s, u"-newkey"_s, u"ec"_s, u"-pkeyopt"_s,
                                     u"ec_paramgen_curve:prime256v1"_s, u"-nodes"_s, u"-days"_s,
                                     u"2"_s, u"-subj"_s, u"/CN=test"_s, u"-addext"_s,
                                     u"subjectAltName="_s + subjectAlternativeName, u"-keyout"_s,
                                     keyFile(), u"-out"_s, certificateFile()});
        openssl.waitForFinished();
        QFile key(keyFile());
        QFile certificate(certificateFile());
        if (!key.open(QIODevice::ReadOnly) || !certificate.open(QIODevice::ReadOnly))
            return;
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        configuration.setPrivateKey(QSslKey(&key, QSsl::Ec));
        configuration.setLocalCertificate(QSslCertificate(&certificate));
        m_server.setSslConfiguration(configuration);
        QObject::connect(&m_server, &QTcpServer::pendingConnectionAvailable, &m_server,
                         [this] { answer(m_server.nextPendingConnection()); });
        m_server.listen(QHostAddress::LocalHost);
    }

    [[nodiscard]] bool isReady() const { return m_server.isListening(); }
    [[nodiscard]] QString certificateFile() const { return m_folder.filePath(u"server.pem"_s); }
    [[nodiscard]] int requestCount() const { return m_requestCount; }
    [[nodiscard]] QByteArray url() const
    {
        return "https://127.0.0.1:" + QByteArray::number(m_server.serverPort()) + "/?key=SECRET";
    }

    bool hangsUp = false; ///< as soon as a request begins

    /// The outcome of one request, with the event loop running meanwhile.
    Outcome post(const QString& authorities, Recorder& recorder, const QByteArray& body = "x") const
    {
        std::future<Outcome> outcome = std::async(std::launch::async, [&] {
            CurlHttpSession session(authorities);
            return session.perform(requestTo(url(), body), recorder, {});
        });
        while (outcome.wait_for(0s) != std::future_status::ready)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        return outcome.get();
    }

private:
    [[nodiscard]] QString keyFile() const { return m_folder.filePath(u"server.key"_s); }

    void answer(QTcpSocket* socket)
    {
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
            if (hangsUp)
                return socket->abort();
            if (!socket->readAll().contains("\r\n\r\nx"))
                return;
            ++m_requestCount;
            socket->write(okReply);
            socket->disconnectFromHost();
        });
    }

    QTemporaryDir m_folder;
    QSslServer m_server;
    int m_requestCount = 0;
};

} // namespace

class CurlHttpSessionTest : public QObject {
    Q_OBJECT

private slots:
    void requestIsSentAsGiven()
    {
        ScriptedServer server(okReply);
        QByteArray body(1 << 21, 'b'); // libcurl would ask before it sends as much
        body.replace(0, 4, QByteArray("\0\r\n\xff", 4));
        QCOMPARE(text(post({.url = server.url("/v1?alt=sse&key=a%2Fb"),
                            .headers = {{"content-type", "application/json"},
                                        {"x-zebra", "z"},
                                        {"x-api-key", "k: \"1\", ü"},
                                        {"x-empty", ""},
                                        {"x-apple", "a"}},
                            .body = body})),
                 QString());

        QCOMPARE(server.requests().size(), 1);
        const ScriptedServer::Request request = server.requests().constFirst();
        QCOMPARE(request.body, body);
        QVERIFY(request.head.startsWith("POST /v1?alt=sse&key=a%2Fb HTTP/1.1\r\n"));
        QVERIFY2(request.head.contains("\r\ncontent-type: application/json\r\nx-zebra: z\r\n"
                                       "x-api-key: k: \"1\", ü\r\nx-empty:\r\nx-apple: a\r\n"),
                 request.head.constData());
        for (const char* name :
             {"accept-encoding", "expect", "user-agent", "cookie", "transfer-encoding"})
            QVERIFY2(!request.head.toLower().contains(name), name);
    }

    void completeResponse_data()
    {
        QTest::addColumn<QByteArray>("response");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");

        QTest::newRow("length") << okReply << 200 << QByteArray("ok");
        QTest::newRow("chunks and a trailer")
            << QByteArray("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                          "1\r\no\r\n1;x=y\r\nk\r\n0\r\nX-Trailer: t\r\n\r\n")
            << 200 << QByteArray("ok");
        QTest::newRow("until the end")
            << QByteArray("HTTP/1.0 200 OK\r\n\r\nok") << 200 << QByteArray("ok");
        QTest::newRow("single line ends")
            << QByteArray("HTTP/1.1 200 OK\nContent-Length: 2\n\nok") << 200 << QByteArray("ok");
        QTest::newRow("no reason")
            << QByteArray("HTTP/1.1 529\r\nContent-Length: 2\r\n\r\nno") << 529 << QByteArray("no");
        QTest::newRow("empty") << QByteArray("HTTP/1.1 401 No\r\nContent-Length: 0\r\n\r\n") << 401
                               << QByteArray();
        QTest::newRow("204") << QByteArray("HTTP/1.1 204 No Content\r\n\r\n") << 204
                             << QByteArray();
        QTest::newRow("after interim ones")
            << QByteArray("HTTP/1.1 100 Continue\r\n\r\n"
                          "HTTP/1.1 103 Early Hints\r\nLink: </s>; rel=preload\r\n\r\n") +
                   okReply
            << 200 << QByteArray("ok");
        QTest::newRow("packed unasked")
            << QByteArray("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n"
                          "Content-Length: 2\r\n\r\nok")
            << 200 << QByteArray("ok");
    }

    void completeResponse()
    {
        QFETCH(QByteArray, response);
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        for (const auto& pieces : {singleBytes(response), {{.bytes = response}}}) {
            ScriptedServer server(Script{.pieces = pieces});
            Recorder recorder;
            QCOMPARE(text(post(requestTo(server.url("/")), recorder)), QString());
            QCOMPARE(recorder.statuses, QList<int>{status});
            QVERIFY(!recorder.bodyCameFirst);
            QCOMPARE(recorder.body, body);
        }
    }

    void brokenResponse_data()
    {
        QTest::addColumn<QByteArray>("response");
        QTest::addColumn<QList<int>>("statuses");

        const QList<int> none;
        QTest::newRow("nothing") << QByteArray() << none;
        QTest::newRow("cut in the status line") << QByteArray("HTTP/1.1 20") << none;
        QTest::newRow("cut after the status line") << QByteArray("HTTP/1.1 200 OK\r\n") << none;
        QTest::newRow("cut in a header") << QByteArray("HTTP/1.1 200 OK\r\nContent-Le") << none;
        QTest::newRow("cut after an interim response")
            << QByteArray("HTTP/1.1 100 Continue\r\n\r\n") << none;
        QTest::newRow("cut before the length")
            << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nok") << QList<int>{200};
        QTest::newRow("cut in a chunk")
            << QByteArray("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n9\r\nok")
            << QList<int>{200};
        QTest::newRow("cut before the last chunk")
            << QByteArray("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nok\r\n")
            << QList<int>{200};
        QTest::newRow("no chunk")
            << QByteArray("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n?key=SECRET\r\n")
            << QList<int>{200};
        QTest::newRow("no HTTP") << QByteArray("220 ready for key=SECRET\r\n") << none;
    }

    void brokenResponse()
    {
        QFETCH(QByteArray, response);
        QFETCH(QList<int>, statuses);
        ScriptedServer server(response);
        Recorder recorder;
        const Outcome outcome = post(requestTo(server.url("/?key=SECRET")), recorder);
        QVERIFY(outcome);
        QVERIFY(!outcome->description.contains(u"SECRET"));
        QCOMPARE(recorder.statuses, statuses);
        QCOMPARE(server.connectionCount(), 1UL);
    }

    void nothingIsSentAgain_data()
    {
        QTest::addColumn<int>("answered");
        QTest::addColumn<int>("bodySize");
        QTest::addColumn<Reads>("reads");
        QTest::newRow("the first request") << 0 << 10 << Reads::wholeRequest;
        QTest::newRow("a request after others") << 2 << 10 << Reads::wholeRequest;
        QTest::newRow("a long request") << 1 << (1 << 24) << Reads::wholeRequest;
        QTest::newRow("half a long request") << 1 << (1 << 24) << Reads::headOnly;
    }

    void nothingIsSentAgain()
    {
        QFETCH(int, answered);
        QFETCH(int, bodySize);
        QFETCH(Reads, reads);
        // These keep the connection open, as if it could be used again.
        std::vector<Script> scripts(static_cast<std::size_t>(answered),
                                    {.pieces = {{.bytes = okReply}}, .end = End::silence});
        scripts.push_back({.pieces = {}, .end = End::close, .reads = reads});
        ScriptedServer server(scripts);
        CurlHttpSession session;
        Recorder recorder;
        const HttpRequest request = requestTo(server.url("/"), QByteArray(bodySize, 'b'));
        for (int i = 0; i < answered; ++i)
            QCOMPARE(text(session.perform(request, recorder, {})), QString());
        QCOMPARE(text(session.perform(request, recorder, {})), connectionLost);
        QCOMPARE(server.connectionCount(), std::size_t(answered) + 1);
        QCOMPARE(server.requests().size(), answered + 1);
    }

    void refusalBeforeTheWholeRequestIsAnAnswer()
    {
        ScriptedServer server(Script{
            .pieces = {{.bytes = "HTTP/1.1 417 Expectation Failed\r\nContent-Length: 0\r\n\r\n"}},
            .end = End::silence,
            .reads = Reads::headOnly});
        Recorder recorder;
        QCOMPARE(text(post(requestTo(server.url("/"), QByteArray(1 << 23, 'b')), recorder)),
                 QString());
        QCOMPARE(recorder.statuses, QList<int>{417});
        QCOMPARE(server.connectionCount(), 1UL);
    }

    void redirectIsNotFollowed_data()
    {
        QTest::addColumn<int>("status");
        for (const int status : {301, 302, 303, 307, 308})
            QTest::addRow("%d", status) << status;
    }

    void redirectIsNotFollowed()
    {
        QFETCH(int, status);
        ScriptedServer other(okReply);
        ScriptedServer server("HTTP/1.1 " + QByteArray::number(status) + " Moved\r\nLocation: " +
                              other.url("/") + "\r\nContent-Length: 4\r\n\r\nmove");
        Recorder recorder;
        QCOMPARE(text(post(requestTo(server.url("/")), recorder)), QString());
        QCOMPARE(recorder.statuses, QList<int>{status});
        QCOMPARE(recorder.body, "move");
        QCOMPARE(server.connectionCount(), 1UL);
        QCOMPARE(other.connectionCount(), 0UL);
    }

    void receiverEndsTheTransfer_data()
    {
        QTest::addColumn<bool>("wantsBody");
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("at the status") << false << QByteArray();
        QTest::newRow("in the body") << true << QByteArray("half");
    }

    void receiverEndsTheTransfer()
    {
        QFETCH(bool, wantsBody);
        QFETCH(QByteArray, body);
        ScriptedServer server(
            Script{.pieces = {{.bytes = "HTTP/1.1 500 No\r\nContent-Length: 8\r\n\r\n"},
                              {.bytes = "half", .after = 10ms}},
                   .end = End::silence});
        Recorder recorder;
        recorder.wantsBody = wantsBody;
        recorder.enough = 4;
        // The server says no more: it would be a failure to wait for it.
        QCOMPARE(text(post(requestTo(server.url("/")), recorder)), QString());
        QCOMPARE(recorder.statuses, QList<int>{500});
        QCOMPARE(recorder.body, body);
        QTRY_COMPARE(server.openConnectionCount(), 0UL);
    }

    void silenceTimesOut_data()
    {
        QTest::addColumn<QByteArray>("response");
        QTest::addColumn<int>("bodySize");
        QTest::newRow("no answer") << QByteArray() << 0;
        QTest::newRow("in the head") << QByteArray("HTTP/1.1 200") << 0;
        QTest::newRow("after an interim response")
            << QByteArray("HTTP/1.1 103 Early Hints\r\n\r\n") << 0;
        QTest::newRow("before the body")
            << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n") << 0;
        QTest::newRow("in the body")
            << QByteArray("HTTP/1.1 200 OK\r\n\r\n") + QByteArray(100000, 'b') << 0;
        QTest::newRow("in the request") << QByteArray() << (1 << 24);
    }

    void silenceTimesOut()
    {
        QFETCH(QByteArray, response);
        QFETCH(int, bodySize);
        ScriptedServer server(
            Script{.pieces = {{.bytes = response}}, .end = End::silence, .reads = Reads::headOnly});
        QCOMPARE(text(post(requestTo(server.url("/"), QByteArray(bodySize, 'b'), 1s))), timedOut);
        QCOMPARE(server.connectionCount(), 1UL);
    }

    void silenceBeforeTheRequestTimesOut()
    {
        const BusyPort busy;
        QCOMPARE(text(post(requestTo(busy.url(), {}, 1s))), timedOut);
        ScriptedServer server(Script{.pieces = {}, .end = End::silence}); // no TLS there
        QCOMPARE(text(post(requestTo(server.url("/").replace("http:", "https:"), {}, 1s))),
                 timedOut);
    }

    void slowServerIsNotCut_data()
    {
        QTest::addColumn<QByteArray>("start");
        QTest::addColumn<QByteArray>("slowly");
        QTest::addColumn<QByteArray>("rest");
        QTest::newRow("in the head")
            << QByteArray("HTTP/1.1 2") << QByteArray("00") << okReply.mid(12);
        QTest::newRow("in the body") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\n")
                                     << QByteArray("ab") << QByteArray("ok");
        QTest::newRow("in the frame of a chunk")
            << QByteArray("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2;")
            << QByteArray("x=") << QByteArray("\r\nok\r\n0\r\n\r\n");
    }

    void slowServerIsNotCut()
    {
        QFETCH(QByteArray, start);
        QFETCH(QByteArray, slowly);
        QFETCH(QByteArray, rest);
        Script script{.pieces = {{.bytes = start}}};
        for (const char byte : slowly)
            script.pieces.push_back({.bytes = QByteArray(1, byte), .after = 1300ms});
        script.pieces.push_back({.bytes = rest, .after = 1300ms});
        ScriptedServer server(script);
        Recorder recorder;
        QCOMPARE(text(post(requestTo(server.url("/"), {}, 2s), recorder)), QString());
        QCOMPARE(recorder.statuses, QList<int>{200});
        QVERIFY(recorder.body.endsWith("ok"));
    }

    void slowReceiverIsNotCut()
    {
        class : public HttpReceiver {
        public:
            bool onStatus(int) override { return true; }
            bool onBytes(std::string_view bytes) override
            {
                std::this_thread::sleep_for(1500ms);
                length += bytes.size();
                return true;
            }
            std::size_t length = 0;
        } receiver;
        ScriptedServer server(
            Script{.pieces = {{.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\no"},
                              {.bytes = "k", .after = 100ms}}});
        QCOMPARE(text(post(requestTo(server.url("/"), {}, 1s), receiver)), QString());
        QCOMPARE(receiver.length, 2UL);
    }

    void stopEndsTheTransfer_data()
    {
        QTest::addColumn<QByteArray>("response");
        QTest::addColumn<int>("bodySize");
        QTest::addColumn<qsizetype>("received");
        QTest::newRow("no answer") << QByteArray() << 0 << qsizetype(0);
        QTest::newRow("in the body")
            << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhalf") << 0 << qsizetype(4);
        QTest::newRow("in the request") << QByteArray() << (1 << 24) << qsizetype(0);
    }

    void stopEndsTheTransfer()
    {
        QFETCH(QByteArray, response);
        QFETCH(int, bodySize);
        QFETCH(qsizetype, received);
        ScriptedServer server(
            Script{.pieces = {{.bytes = response}}, .end = End::silence, .reads = Reads::headOnly});
        class : public HttpReceiver {
        public:
            bool onStatus(int) override { return true; }
            bool onBytes(std::string_view bytes) override
            {
                length += static_cast<qsizetype>(bytes.size());
                return true;
            }
            std::atomic<qsizetype> length = 0;
        } receiver;
        std::stop_source stop;
        std::future<Outcome> outcome = std::async(std::launch::async, [&] {
            return post(requestTo(server.url("/?key=SECRET"), QByteArray(bodySize, 'b')), receiver,
                        stop.get_token());
        });
        QTRY_COMPARE(server.requests().size(), 1);
        QTRY_COMPARE(receiver.length.load(), received);
        stop.request_stop();
        QTRY_COMPARE(outcome.wait_for(0s), std::future_status::ready);
        QVERIFY(outcome.get());
    }

    void stopEndsTheConnecting()
    {
        const BusyPort busy;
        Recorder recorder;
        std::stop_source stop;
        std::future<Outcome> outcome = std::async(std::launch::async, [&] {
            return post(requestTo(busy.url()), recorder, stop.get_token());
        });
        QCOMPARE(outcome.wait_for(100ms), std::future_status::timeout);
        stop.request_stop();
        QTRY_COMPARE(outcome.wait_for(0s), std::future_status::ready);
        QVERIFY(outcome.get());
    }

    void stopBeforehandSendsNothing()
    {
        ScriptedServer server(okReply);
        std::stop_source stop;
        stop.request_stop();
        Recorder recorder;
        QVERIFY(post(requestTo(server.url("/")), recorder, stop.get_token()));
        QCOMPARE(server.connectionCount(), 0UL);
        QCOMPARE(recorder.statuses, QList<int>());
    }

    void manyAtOnce()
    {
        ScriptedServer server(okReply);
        CurlHttpSession session;
        std::atomic<int> wellDone = 0;
        {
            std::vector<std::jthread> threads;
            threads.reserve(8);
            for (int thread = 0; thread < 8; ++thread)
                threads.emplace_back([&, thread] {
                    for (int i = 0; i < 10; ++i) {
                        Recorder recorder;
                        const HttpRequest request =
                            requestTo(server.url("/"), QByteArray::number(thread * 10 + i));
                        const bool failed = session.perform(request, recorder, {}).has_value();
                        wellDone += !failed && recorder.body == "ok";
                    }
                });
        }
        QCOMPARE(wellDone.load(), 80);
        QSet<QByteArray> bodies;
        for (const ScriptedServer::Request& request : server.requests())
            bodies << request.body;
        QCOMPARE(server.requests().size(), 80);
        QCOMPARE(bodies.size(), 80);
    }

    void unsendableHeaderIsRefused_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("value");
        const QByteArray name = "x-api-key";
        QTest::newRow("line break") << name << QByteArray("SECRET\r\nx-other: SECRET");
        QTest::newRow("return") << name << QByteArray("SECRET\r");
        QTest::newRow("line feed") << name << QByteArray("\nSECRET");
        QTest::newRow("zero") << name << QByteArray("SEC\0SECRET", 10);
        QTest::newRow("escape") << name << QByteArray("SECRET\x1b[0m");
        QTest::newRow("delete") << name << QByteArray("SECRET\x7f");
        QTest::newRow("line break in the name") << QByteArray("x\r\ny") << QByteArray("SECRET");
    }

    void unsendableHeaderIsRefused()
    {
        QFETCH(QByteArray, name);
        QFETCH(QByteArray, value);
        ScriptedServer server(okReply);
        Recorder recorder;
        const Outcome outcome =
            post({.url = server.url("/"), .headers = {{"x-a", "a"}, {name, value}}, .body = {}},
                 recorder);
        QVERIFY(outcome);
        QVERIFY(!outcome->description.contains(u"SEC"));
        QCOMPARE(server.connectionCount(), 0UL);
        QCOMPARE(recorder.statuses, QList<int>());
    }

    void badAddressIsRefused_data()
    {
        QTest::addColumn<QByteArray>("url");
        QTest::addColumn<QString>("expected");
        const QString any;
        QTest::newRow("empty") << QByteArray() << any;
        QTest::newRow("no host") << QByteArray("http://?key=SECRET") << any;
        QTest::newRow("no scheme") << QByteArray("://SECRET") << any;
        QTest::newRow("open bracket") << QByteArray("http://[::1?key=SECRET") << any;
        QTest::newRow("port") << QByteArray("http://localhost:99999/?key=SECRET") << any;
        QTest::newRow("blank") << QByteArray("http://local host/?key=SECRET") << any;
        QTest::newRow("line break") << QByteArray("http://127.0.0.1/?key=SECRET\r\nx: y") << any;
        QTest::newRow("zero") << QByteArray("http://127.0.0.1:9/\0?key=SECRET", 32) << any;
        QTest::newRow("file") << QByteArray("file:///etc/passwd?key=SECRET") << any;
        QTest::newRow("ftp") << QByteArray("ftp://127.0.0.1/?key=SECRET") << any;
        QTest::newRow("unknown scheme") << QByteArray("secret://127.0.0.1/?key=SECRET") << any;
        QTest::newRow("unknown host")
            << QByteArray("http://secret.invalid/?key=SECRET")
            << u"The server could not be found. Are you connected to the internet?"_s;
    }

    void badAddressIsRefused()
    {
        QFETCH(QByteArray, url);
        QFETCH(QString, expected);
        Recorder recorder;
        const Outcome outcome = post(requestTo(url), recorder);
        QVERIFY(outcome);
        QVERIFY(!outcome->description.isEmpty());
        QVERIFY2(!outcome->description.contains(u"secret", Qt::CaseInsensitive),
                 qPrintable(outcome->description));
        if (!expected.isEmpty())
            QCOMPARE(outcome->description, expected);
        QCOMPARE(recorder.statuses, QList<int>());
        QCOMPARE(recorder.body, QByteArray());
    }

    void closedPortIsAFailure()
    {
        const ClosedPort closed;
        QCOMPARE(text(post(requestTo(closed.url()))), u"Could not connect to the server."_s);
    }

    void serverWithoutTlsIsAFailure()
    {
        ScriptedServer server(
            Script{.pieces = {{.bytes = okReply}}, .end = End::silence, .reads = Reads::nothing});
        QCOMPARE(text(post(requestTo(server.url("/?key=SECRET").replace("http:", "https:")))),
                 u"A secure connection to the server could not be made."_s);
    }

    void certificates_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("isAuthority");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("unknown") << u"IP:127.0.0.1"_s << false << false;
        QTest::newRow("known") << u"IP:127.0.0.1"_s << true << true;
        QTest::newRow("of another host") << u"DNS:example.org"_s << true << false;
    }

    void certificates()
    {
        if (QStandardPaths::findExecutable(u"openssl"_s).isEmpty())
            QSKIP("The openssl command, which makes the certificates, is not installed");
        QFETCH(QString, name);
        QFETCH(bool, isAuthority);
        QFETCH(bool, accepted);
        TlsServer server(name);
        QVERIFY(server.isReady());
        Recorder recorder;
        const Outcome outcome =
            server.post(isAuthority ? server.certificateFile() : QString(), recorder);
        QCOMPARE(text(outcome),
                 accepted ? QString() : u"The identity of the server could not be verified."_s);
        QCOMPARE(recorder.body, accepted ? "ok" : "");
        QCOMPARE(server.requestCount(), accepted ? 1 : 0);
    }

    void lostTlsConnectionIsAFailure()
    {
        if (QStandardPaths::findExecutable(u"openssl"_s).isEmpty())
            QSKIP("The openssl command, which makes the certificates, is not installed");
        TlsServer server(u"IP:127.0.0.1"_s);
        QVERIFY(server.isReady());
        server.hangsUp = true;
        Recorder recorder;
        // Writing on must not end the process with a signal.
        QCOMPARE(text(server.post(server.certificateFile(), recorder, QByteArray(1 << 24, 'b'))),
                 connectionLost);
        QCOMPARE(recorder.statuses, QList<int>());
    }

    void missingAuthoritiesTrustNobody()
    {
        if (QStandardPaths::findExecutable(u"openssl"_s).isEmpty())
            QSKIP("The openssl command, which makes the certificates, is not installed");
        TlsServer server(u"IP:127.0.0.1"_s);
        QVERIFY(server.isReady());
        Recorder recorder;
        QCOMPARE(text(server.post(u"/nonexistent/authorities.pem"_s, recorder)),
                 u"The identity of the server could not be verified."_s);
        QCOMPARE(server.requestCount(), 0);
    }
};

QTEST_GUILESS_MAIN(CurlHttpSessionTest)
#include "CurlHttpSessionTest.moc"
