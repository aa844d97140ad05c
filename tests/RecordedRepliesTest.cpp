#include "core/JsonReader.h"
#include "platform/fake/FakeKeyStore.h"
#include "providers/ClaudeService.h"
#include "providers/GeminiService.h"
#include "providers/LineSplitter.h"
#include "tests/HttpByHand.h"
#include "tests/Received.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QTest>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

const QString& corpora()
{
    static const QString folder = qEnvironmentVariable("VARNO_CORPORA");
    return folder;
}

QByteArray contents(const QString& name)
{
    QFile file(corpora() + u'/' + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(name));
    return file.readAll();
}

QList<QJsonObject> jsonLines(const QString& name)
{
    QList<QJsonObject> objects;
    for (const QByteArray& line : contents(name).split('\n')) {
        if (!line.isEmpty())
            objects.append(QJsonDocument::fromJson(line).object());
    }
    return objects;
}

/// A way of cutting a reply into the parts that the network delivers.
struct Cut {
    const char* name;
    std::function<qsizetype()> nextLength;
};

QList<Cut> cuts()
{
    return {
        {"whole", [] { return std::numeric_limits<qsizetype>::max(); }},
        {"1 byte", [] { return 1; }},
        {"7 bytes", [] { return 7; }},
        {"random", [random = QRandomGenerator(20)]() mutable { return random.bounded(1, 300); }}};
}

void forEachPart(const QByteArray& bytes, const Cut& cut,
                 const std::function<bool(std::string_view)>& take)
{
    for (qsizetype start = 0; start < bytes.size();) {
        const qsizetype length = std::min(cut.nextLength(), bytes.size() - start);
        if (!take({bytes.data() + start, static_cast<std::size_t>(length)}))
            return;
        start += length;
    }
}

/// Replays `body` to the real client of its service.
Received replay(bool isGemini, int status, const QByteArray& body, const Cut& cut)
{
    FakeKeyStore store;
    const KeychainService keychain(store);
    keychain.save(u"made-up"_s, keychain.anthropicAccount);
    keychain.save(u"made-up"_s, keychain.geminiAccount);
    HttpByHand http;
    http.respond = [&](const HttpRequest&, HttpReceiver& receiver) -> std::optional<Failure> {
        if (receiver.onStatus(status))
            forEachPart(body, cut, [&](std::string_view part) { return receiver.onBytes(part); });
        return std::nullopt;
    };
    const ClaudeService claude("https://example.invalid", http, keychain);
    const GeminiService gemini("https://example.invalid", http, keychain);
    return receive(isGemini ? gemini.streamEntry({}) : claude.streamEntry({}));
}

/// The events that the rules of the event stream format make of `bytes`, over our lines.
QJsonArray events(const QByteArray& bytes, const Cut& cut)
{
    QJsonArray dispatched;
    QByteArray data;
    QByteArray type;
    LineSplitter splitter;
    const auto onLine = [&](std::string_view text) {
        const QByteArray line(text.data(), static_cast<qsizetype>(text.size()));
        if (line.isEmpty()) {
            if (!data.isEmpty())
                dispatched.append(QJsonObject{
                    {u"type"_s, type.isEmpty() ? u"message"_s : QString::fromUtf8(type)},
                    {u"data"_s, QString::fromUtf8(data.chopped(1))}});
            data.clear();
            type.clear();
            return true;
        }
        const qsizetype colon = line.indexOf(':');
        const QByteArray field = colon < 0 ? line : line.first(colon);
        QByteArray value = colon < 0 ? QByteArray() : line.sliced(colon + 1);
        if (value.startsWith(' '))
            value.remove(0, 1);
        if (field == "data")
            data += value + '\n';
        else if (field == "event")
            type = value;
        return true;
    };
    forEachPart(bytes, cut, [&](std::string_view part) { return splitter.feed(part, onLine); });
    return dispatched;
}

} // namespace

/// What others recorded from the real services, and public cases for the formats. They are not part
/// of the project: without them these tests are skipped.
class RecordedRepliesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (corpora().isEmpty() || !QDir(corpora()).exists())
            QSKIP("there is no folder of recorded replies here");
    }

    void streams_data()
    {
        QTest::addColumn<bool>("isGemini");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("thoughtLength");
        for (const bool isGemini : {false, true}) {
            const QString folder = isGemini ? u"gemini"_s : u"anthropic"_s;
            for (const QJsonObject& expected : jsonLines(folder + u"/expected.dev.jsonl"_s)) {
                const QString file = expected[u"file"_s].toString();
                QTest::newRow(qPrintable(file))
                    << isGemini << file << expected[u"text"_s].toString()
                    << expected[u"thought_chars"_s].toInt();
            }
        }
    }
    void streams()
    {
        QFETCH(bool, isGemini);
        QFETCH(QString, file);
        QFETCH(QString, text);
        QFETCH(int, thoughtLength);
        const QByteArray body = contents(file);
        // A recorded refusal, whose status is not in the file.
        const bool isError = body.trimmed().startsWith('{');
        for (const Cut& cut : cuts()) {
            const Received received = replay(isGemini, isError ? 400 : 200, body, cut);
            QCOMPARE(received.error.isEmpty(), !isError);
            // A thought stands in a first part like any other text, so it is text to us.
            QCOMPARE(received.text().size(), thoughtLength + text.size());
            QVERIFY2(received.text().sliced(thoughtLength) == text, cut.name);
        }
    }

    void streamedArraysHoldNoEvents()
    {
        const QStringList files = QDir(corpora() + u"/gemini"_s).entryList({u"*.array.json"_s});
        QVERIFY(!files.isEmpty());
        for (const QString& file : files) {
            const Received received =
                replay(true, 200, contents(u"gemini/"_s + file), cuts().constFirst());
            QVERIFY(received.pieces.isEmpty());
            QVERIFY(received.error.isEmpty());
        }
    }

    void errors_data()
    {
        QTest::addColumn<QString>("file");
        for (const QString& folder : {u"anthropic/errors"_s, u"gemini/errors"_s}) {
            for (const QString& file : QDir(corpora() + u'/' + folder).entryList(QDir::Files))
                QTest::newRow(qPrintable(file)) << QString(folder + u'/' + file);
        }
    }
    void errors()
    {
        QFETCH(QString, file);
        const QByteArray body = contents(file);
        const QJsonObject error = QJsonDocument::fromJson(body).object()[u"error"_s].toObject();
        const bool isGemini = file.startsWith(u"gemini"_s);
        const QString expected = !isGemini ? u"API error (HTTP 400). Please try again."_s
                                 : error.contains(u"message"_s)
                                     ? u"Gemini error: "_s + error[u"message"_s].toString()
                                     : u"Gemini API error (HTTP 400). Please try again."_s;
        for (const Cut& cut : cuts())
            QCOMPARE(replay(isGemini, 400, body, cut).error, expected);
    }

    void eventStreamFormat_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QJsonArray>("expected");
        for (const QJsonObject& example : jsonLines(u"wpt-sse/wpt-cases.jsonl"_s)) {
            QByteArray bytes;
            for (const auto& chunk : example[u"chunks_b64"_s].toArray())
                bytes += QByteArray::fromBase64(chunk.toString().toLatin1());
            QTest::newRow(qPrintable(example[u"id"_s].toString()))
                << bytes << example[u"expect"_s].toArray();
        }
    }
    void eventStreamFormat()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QJsonArray, expected);
        for (const Cut& cut : cuts())
            QCOMPARE(events(bytes, cut), expected);
    }

    void jsonTexts_data()
    {
        QTest::addColumn<QString>("file");
        for (const QString& folder : {u"json/test_parsing"_s, u"json/test_transform"_s}) {
            for (const QString& file : QDir(corpora() + u'/' + folder).entryList(QDir::Files))
                QTest::newRow(qPrintable(file)) << QString(folder + u'/' + file);
        }
    }
    void jsonTexts()
    {
        QFETCH(QString, file);
        const QByteArray text = contents(file);
        json::Parser parser;
        const bool valid = json::parse(parser, text).has_value();
        const QString name = file.section(u'/', -1);
        if (name.startsWith(u"y_"_s))
            QVERIFY(valid);
        else if (name.startsWith(u"n_"_s))
            QVERIFY(!valid);
        else
            qInfo("%s", valid ? "accepted" : "refused");
    }
};

VARNO_TEST(QCoreApplication, RecordedRepliesTest)
#include "RecordedRepliesTest.moc"
