#include "tests/StandInClient.h"

#include <QTest>

#include <memory>
#include <vector>

using namespace varno;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class StandInScriptTest : public QObject {
    Q_OBJECT

private slots:
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
        QVERIFY(!claudeErrorType(reply).isEmpty());
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
};

QTEST_GUILESS_MAIN(StandInScriptTest)
#include "StandInScriptTest.moc"
