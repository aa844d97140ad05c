#include "core/EntryText.h"
#include "core/JsonArray.h"
#include "demo/ModelAnswer.h"
#include "demo/Question.h"
#include "tests/StandInClient.h"
#include "tests/TestMain.h"

#include <QDirIterator>
#include <QRegularExpression>

#include <deque>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

const QByteArray withoutTools = QByteArray(claudeRequest).replace("tools", "notes");

/// The records in the lines with data, empty for what is no record.
QList<QJsonValue> records(const QByteArray& body)
{
    QList<QJsonValue> records;
    for (const QByteArray& line : body.split('\n')) {
        if (line.startsWith("data: "))
            records.append(QJsonDocument::fromJson(line.sliced(6)).object());
    }
    return records;
}

} // namespace

class StandInServiceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void listensOnLoopbackOnly_data()
    {
        QTest::addColumn<bool>("allowed");
        for (const char* address : {"127.8.0.1", "localhost"})
            QTest::newRow(address) << true;
        for (const char* address : {"0.0.0.0", "::", "192.168.0.1", "127.0.0.1.example.org",
                                    "1.0.0.127", "::ffff:10.0.0.1", ""})
            QTest::newRow(address) << false;
    }
    void listensOnLoopbackOnly()
    {
        QFETCH(bool, allowed);
        QString error;
        const QString address = QString::fromLatin1(QTest::currentDataTag());
        const auto service = StandInService::start({.address = address}, &error);
        QCOMPARE(service != nullptr, allowed);
        QCOMPARE(error.contains("on loopback addresses only"_L1), !allowed);
        if (!service)
            return;
        const QUrl url = QUrl::fromEncoded(service->claudeEndpoint());
        QCOMPARE(url.host(), address);
        QVERIFY(!StandInService::start({.address = address, .port = url.port()})); // it is taken
    }

    void claudeStream()
    {
        const QRegularExpression named(u"event: (\\w+)\ndata: \\{\"type\":\"\\1\"[^\n]*\\}\n\n"_s);
        const auto service = StandInService::start();
        const BareReply reply = ask(*service, claudeRequest);
        QVERIFY(reply.complete);
        QCOMPARE(reply.contentType, QByteArray("text/event-stream; charset=utf-8"));
        QCOMPARE(QString::fromUtf8(reply.body()).remove(named), QString());
        QVERIFY(reply.body().contains(" }\n")); // a padded record
        QStringList kinds;
        QString text;
        for (const QJsonValue& record : records(reply.body())) {
            const QJsonValue delta = record[u"delta"];
            text += delta[u"text"].toString();
            const QString kind = record[u"type"].toString() + u':' + delta[u"type"].toString() +
                                 record[u"content_block"][u"type"].toString();
            if (!kinds.endsWith(kind))
                kinds.append(kind);
        }
        QCOMPARE(text, u"I'll look that up."_s + modelAnswer(EntryLibrary(), aPrompt));
        QCOMPARE(kinds.join(u' ').remove(u"content_block_"_s),
                 u"message_start: start:text ping: delta:text_delta stop: "
                 "start:server_tool_use delta:input_json_delta stop: "
                 "start:web_search_tool_result stop: "
                 "start:text delta:text_delta stop: message_delta: message_stop:"_s);
    }

    void geminiStream()
    {
        const auto service = StandInService::start();
        for (const QString& pieces : {u"<a>'|b'&c|d"_s, u"<a>'|b'&c|"_s}) { // or none at the end
            service->setScript({.pieceLength = 4, .text = QString(pieces).remove(u'|').toUtf8()});
            const BareReply reply = ask(*service, geminiRequest);
            QCOMPARE(reply.contentType, QByteArray("text/event-stream"));
            QCOMPARE(reply.body().count("\r\n\r\n"), 3);
            QCOMPARE(reply.body().count('\n'), 6);
            QVERIFY(!reply.body().contains('<')); // an escape in its place
            QStringList found;
            for (const QJsonValue& record : records(reply.body())) {
                const QJsonValue candidate = record[u"candidates"][0];
                found.append(candidate[u"content"][u"parts"][0][u"text"].toString());
                QCOMPARE(candidate[u"finishReason"] == u"STOP"_s, found.size() == 3);
                QCOMPARE(candidate[u"groundingMetadata"].isObject(), found.size() == 3);
            }
            QCOMPARE(found.join(u'|'), pieces);
        }
    }

    void wholeReplies()
    {
        const auto service = StandInService::start();
        service->setScript({.statusCode = 500}); // for those that are streamed
        const QString answer = modelAnswer(EntryLibrary(), aPrompt);
        const BareReply claude = ask(*service, QByteArray(claudeRequest).replace("true", "false"));
        QCOMPARE(claude.contentType, QByteArray("application/json"));
        QCOMPARE(claude.json()[u"content"][2][u"text"], answer);
        const BareReply gemini = ask(*service, QByteArray(geminiRequest).replace("streamG", "g"));
        QCOMPARE(gemini.contentType, QByteArray("application/json; charset=UTF-8"));
        QCOMPARE(gemini.json()[u"candidates"][0][u"content"][u"parts"][0][u"text"], answer);
    }

    void refusals_data()
    {
        QTest::addColumn<bool>("isGemini");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("error");
        // What is missing from a request in good order:
        const auto row = [](bool isGemini, const char* missing, int status, const QString& error) {
            QTest::newRow(missing) << isGemini << status << error;
        };
        row(false, "X-Api-Key: k\r\n", 401, u"authentication_error"_s);
        row(false, "anthropic-version: 2023-06-01\r\n", 400, u"invalid_request_error"_s);
        row(false, "Content-Type: application/json\r\n", 400, u"invalid_request_error"_s);
        row(false, "claude-", 404, u"not_found_error"_s);
        row(false, "}", 400, u"invalid_request_error"_s);
        row(false, "max_tokens", 400, u"invalid_request_error"_s);
        row(false, "role", 400, u"invalid_request_error"_s);
        row(true, "key=k&", 403, u"PERMISSION_DENIED"_s);
        row(true, "gemini-", 404, u"NOT_FOUND"_s);
        row(true, "stream", 404, u"NOT_FOUND"_s);
        row(true, "&alt=sse", 400, u"INVALID_ARGUMENT"_s);
        row(true, "contents", 400, u"INVALID_ARGUMENT"_s);
        row(true, "text", 400, u"INVALID_ARGUMENT"_s);
    }
    void refusals()
    {
        QFETCH(bool, isGemini);
        const auto service = StandInService::start();
        QByteArray request = isGemini ? geminiRequest : claudeRequest;
        request.replace(QTest::currentDataTag(), "");
        const BareReply reply = ask(*service, request);
        QVERIFY(reply.complete);
        QTEST(reply.status, "status");
        const bool wantsEvents = request.contains(":stream") && request.contains("alt=sse");
        QCOMPARE(reply.contentType.startsWith("text/event-stream"), wantsEvents);
        const QJsonValue error = reply.json()[u"error"];
        QTEST(error[isGemini ? u"status" : u"type"].toString(), "error");
        QVERIFY(error[u"message"].isString());
        QVERIFY(isGemini ? error[u"code"] == reply.status : reply.json()[u"type"] == u"error"_s);
    }

    void scriptedBodies()
    {
        const auto service = StandInService::start();
        service->setScript({.statusCode = 529});
        QCOMPARE(ask(*service, claudeRequest).json()[u"error"][u"type"], u"overloaded_error"_s);
        Script recorded{.body = "data:\r\n\r\ndata: \xff\n\n\n: b\r\rno end"};
        service->setScript(recorded);
        QCOMPARE(ask(*service, claudeRequest).chunks,
                 QByteArrayList({"data:\r\n\r\n", "data: \xff\n\n", "\n: b\r\rno end"}));
        recorded.writeLength = 12;
        service->setScript(recorded);
        QCOMPARE(ask(*service, claudeRequest).chunks,
                 QByteArrayList({"data:\r\n\r\ndat", "a: \xff\n\n\n: b\r\r", "no end"}));
    }

    void disturbances()
    {
        const auto service = StandInService::start();
        service->setScript({.pieceLength = 4,
                            .crlf = true,
                            .text = "11112222",
                            .malformedEvent = true,
                            .hugeLineLength = 300'000,
                            .errorEvent = true});
        for (const QByteArray& request : {withoutTools, geminiRequest}) {
            const QByteArray body = ask(*service, request).body();
            QCOMPARE(body.count("\r\n"), body.count('\n'));
            const qsizetype start = body.indexOf("1111");
            const QByteArray between = body.mid(start, body.indexOf("2222") - start);
            QVERIFY(between.contains("\"text\":\r\n\r\n"));
            QVERIFY(between.contains(QByteArray(299'900, 'x')));
            QVERIFY(between.contains("\"error\":{"));
        }
    }

    void endsInTheMiddle_data()
    {
        QTest::addColumn<Script>("script");
        QTest::addColumn<int>("pieces"); // that still come
        QTest::newRow("drop") << Script{.dropAfterEvents = 3} << 3;
        QTest::newRow("hang at once") << Script{.hangAfterEvents = 0} << 0;
        QTest::newRow("hang") << Script{.hangAfterEvents = 2} << 2;
        QTest::newRow("pause") << Script{.pauseAfterFirstEvent = std::chrono::hours(1)} << 1;
    }
    void endsInTheMiddle()
    {
        QFETCH(Script, script);
        QFETCH(int, pieces);
        const QByteArray last = pieces == 0 ? "\r\n\r\n" : QByteArray::number(pieces * 1111);
        auto service = StandInService::start();
        script.pieceLength = 4;
        script.text = "11112222333344445555";
        service->setScript(script);
        std::deque<Exchange> many;
        for (int i = 0; i < 20; ++i) {
            many.emplace_back(*service, withoutTools);
            QVERIFY(many.back().readUntil(last));
        }
        if (!script.dropAfterEvents)
            service.reset();
        for (Exchange& exchange : many) {
            const BareReply reply = exchange.readAll();
            QVERIFY(!reply.complete);
            QVERIFY(!reply.body().contains(QByteArray::number((pieces + 1) * 1111)));
        }
    }

    void libraryIsWhole()
    {
        const EntryLibrary library;
        qsizetype count = 0;
        const auto gives = [&](const QString& prompt, const std::optional<QString>& text) {
            if (!text)
                return true;
            ++count;
            const auto related = parseJSONArray(relatedTopicsText(*text).value_or(QString()));
            return related && related->size() >= 4 && !cleanEntryText(*text).isEmpty() &&
                   modelAnswer(library, prompt).endsWith("<entry>"_L1 + *text + "</entry>"_L1);
        };
        for (const auto& topic : library.topics()) {
            const QString title = topic.title.toUpper() + u'?';
            QCOMPARE(library.find(title), &topic);
            QVERIFY(gives(entryPrompt(EntryType::definition, title), topic.definition));
            QVERIFY(gives(entryPrompt(EntryType::shortAnswer, title), topic.answer));
            QVERIFY(gives(entryPrompt(EntryType::full, title), topic.article));
            for (const auto& [name, text] : topic.sections)
                QVERIFY2(gives(sectionPrompt(name, title), text), qUtf8Printable(name));
            QCOMPARE(topic.article.has_value(), topic.sections.size() >= 5);
            const auto sections = parseJSONArray(modelAnswer(library, tocPrompt(title)));
            QCOMPARE(sections->size(), topic.sections.size());
        }
        const QString source = QFINDTESTDATA("../demo/library");
        QDirIterator files(source, QDir::Files, QDirIterator::Subdirectories);
        for (; files.hasNext(); files.next())
            --count;
        QCOMPARE(count, 0);
    }

    void saysWhatIsMissing()
    {
        const EntryLibrary library;
        for (const QString& prompt : {entryPrompt(EntryType::full, u"the soup"_s),
                                      sectionPrompt(u"the soup"_s, u"Stoicism"_s), u"the soup"_s}) {
            const QString text = modelAnswer(library, prompt);
            QVERIFY(cleanEntryText(text).contains("the soup"_L1));
            const auto related = parseJSONArray(relatedTopicsText(text).value_or(QString()));
            QCOMPARE(related.value_or(QStringList()).size(), 5);
            for (const QString& title : *related)
                QVERIFY2(library.find(title), qUtf8Printable(title));
        }
    }

    void readsPrompts()
    {
        for (const QString& topic :
             {u"the \"great\" shift\""_s, u"%1 and %2"_s, u"\". Include etymology. \"x"_s,
              u"a\" section of an encyclopedia article about \"b"_s, u"漢字 🙂\n"_s, u""_s}) {
            QCOMPARE(readPrompt(entryPrompt(EntryType::full, topic)),
                     Question(EntryQuestion{EntryType::full, topic}));
            QCOMPARE(readPrompt(tocPrompt(topic)), Question(TOCQuestion{topic}));
            QCOMPARE(readPrompt(sectionPrompt(topic, topic)),
                     Question(SectionQuestion{topic, topic}));
        }
        QCOMPARE(readPrompt(u"For the topic \"Rome\"!"_s), Question(TOCQuestion{u"Rome"_s}));
    }
};

VARNO_TEST(QCoreApplication, StandInServiceTest)
#include "StandInServiceTest.moc"
