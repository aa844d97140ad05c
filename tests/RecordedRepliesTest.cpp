#include "reader/text/MarkdownContentView.h"
#include "tests/BothClients.h"
#include "tests/Table.h"
#include "tests/TestMain.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QRegularExpression>

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
    ClientsByHand clients;
    clients.respond = [&](const HttpRequest&, HttpReceiver& receiver) -> std::optional<Failure> {
        if (receiver.onStatus(status))
            forEachPart(body, cut, [&](std::string_view part) { return receiver.onBytes(part); });
        return std::nullopt;
    };
    return clients.ask(isGemini);
}

/// All of it: the text, its formats, and what of its rows goes with a selection.
QString described(MarkdownContentView& view)
{
    // Asking for what stands behind any end has all of it written.
    static_cast<void>(view.blockRect(1000000));
    view.findChild<QTextBrowser*>()->selectAll();
    return view.document().toHtml() + view.selectedText();
}

QString lettersAndDigits(QString text)
{
    static const QRegularExpression others(u"[^\\p{L}\\p{N}]+"_s);
    return text.remove(others);
}

/// Of a block that begins as a list, headings aside, the lines that are items; else all of it.
QString shownLines(const QString& block)
{
    static const QRegularExpression bullet(u"^[ \t]*[-*] "_s);
    static const QRegularExpression number(u"^[ \t]*\\p{N}.*\\. "_s);
    static const QRegularExpression body(u"^(#{1,3} .*\n\\s*)*"_s);
    const qsizetype begin = body.match(block).capturedLength();
    const QString first = block.sliced(begin).section(u'\n', 0, 0);
    const bool isBulletList = bullet.match(first).hasMatch();
    if (!isBulletList && !number.match(first).hasMatch())
        return block;
    QString shown = block.first(begin);
    for (const QString& line : block.sliced(begin).split(u'\n')) {
        if (isBulletList ? bullet.match(line).hasMatch() : line.trimmed().contains(u". "_s))
            shown += line;
    }
    return shown;
}

/// What of a reply the reader should see, less its marks.
QString visible(QString text)
{
    static const QRegularExpression address(u"(?<=\\])\\([^)\\s]*\\)"_s);
    static const QRegularExpression entity(u"&(#[0-9]+|#x[0-9a-f]+|[a-z]+);"_s);
    QString shown;
    for (const QString& block : text.remove(address).remove(entity).split(u"\n\n"_s))
        shown += shownLines(block.trimmed());
    return lettersAndDigits(shown);
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

    void streams()
    {
        for (const QString& folder : {u"anthropic"_s, u"gemini"_s}) {
            for (const QJsonObject& expected : jsonLines(folder + u"/expected.dev.jsonl"_s)) {
                const QString file = expected[u"file"_s].toString();
                const QString text = expected[u"text"_s].toString();
                // A thought stands in a first part like any other text, so it is text to us.
                const int thoughtLength = expected[u"thought_chars"_s].toInt();
                const QByteArray body = contents(file);
                // A recorded refusal, whose status is not in the file.
                const bool isError = body.trimmed().startsWith('{');
                for (const Cut& cut : cuts()) {
                    const InRow row(file, cut.name);
                    const Received received =
                        replay(folder == u"gemini", isError ? 400 : 200, body, cut);
                    QCOMPARE(received.error.isEmpty(), !isError);
                    QCOMPARE(received.text().size(), thoughtLength + text.size());
                    QCOMPARE(received.text().sliced(thoughtLength), text);
                }
            }
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

    void errors()
    {
        for (const QString& folder : {u"anthropic/errors/"_s, u"gemini/errors/"_s}) {
            for (const QString& file : QDir(corpora() + u'/' + folder).entryList(QDir::Files)) {
                const InRow row(folder, file);
                const QByteArray body = contents(folder + file);
                const auto error = QJsonDocument::fromJson(body).object()[u"error"_s].toObject();
                const bool isGemini = folder.startsWith(u"gemini"_s);
                const QString expected = !isGemini ? u"API error (HTTP 400). Please try again."_s
                                         : error.contains(u"message"_s)
                                             ? u"Gemini error: "_s + error[u"message"_s].toString()
                                             : u"Gemini API error (HTTP 400). Please try again."_s;
                for (const Cut& cut : cuts())
                    QCOMPARE(replay(isGemini, 400, body, cut).error, expected);
            }
        }
    }

    void isShownInWhole()
    {
        QRandomGenerator random(11);
        for (const QString& folder : {u"anthropic"_s, u"gemini"_s}) {
            for (const QJsonObject& expected : jsonLines(folder + u"/expected.dev.jsonl"_s)) {
                const InRow row(expected[u"file"_s].toString());
                const QString text = expected[u"text"_s].toString();
                MarkdownContentView atOnce;
                atOnce.setText(text);
                const QString whole = described(atOnce);
                QCOMPARE(lettersAndDigits(atOnce.selectedText()), visible(text));
                for (const int longest : {1, 12, 300}) {
                    MarkdownContentView streamed;
                    for (qsizetype begin = 0; begin < text.size();) {
                        const qsizetype length = std::min<qsizetype>(random.bounded(1, longest + 1),
                                                                     text.size() - begin);
                        streamed.appendText(QStringView(text).sliced(begin, length));
                        begin += length;
                    }
                    QCOMPARE(described(streamed), whole);
                }
            }
        }
    }
};

VARNO_TEST(QApplication, RecordedRepliesTest)
#include "RecordedRepliesTest.moc"
