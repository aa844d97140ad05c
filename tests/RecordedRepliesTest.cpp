#include "tests/BothClients.h"
#include "tests/FileContents.h"
#include "tests/PageText.h"
#include "tests/Test.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace {

const QString& corpora()
{
    static const QString folder = qEnvironmentVariable("VARNO_CORPORA");
    return folder;
}

/// Replays `body` to the real client of its service, in parts of at most `longest` bytes.
Received replay(bool isGemini, int status, const QByteArray& body, int longest)
{
    ClientsByHand clients;
    clients.respond = [&](const HttpRequest&, HttpReceiver& receiver) -> std::optional<Failure> {
        QRandomGenerator random(20);
        std::string_view rest(body.data(), static_cast<std::size_t>(body.size()));
        bool wanted = receiver.onStatus(status);
        while (wanted && !rest.empty()) {
            const std::string_view part =
                rest.substr(0, std::size_t{1} + random.bounded(static_cast<quint32>(longest)));
            wanted = receiver.onBytes(part);
            rest.remove_prefix(part.size());
        }
        return std::nullopt;
    };
    return clients.ask(isGemini);
}

/// The words of a text, less the addresses of its links.
QStringList words(QString text)
{
    static const QRegularExpression address(u"(?<=\\])\\([^)\\s]*\\)"_s);
    static const QRegularExpression others(u"[^\\p{L}\\p{N}]+"_s);
    return text.remove(address).split(others, Qt::SkipEmptyParts);
}

} // namespace

/// What others recorded from the real services. It is no part of the project: without it these
/// tests are skipped.
class RecordedRepliesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (corpora().isEmpty() || !QDir(corpora()).exists())
            QSKIP("there is no folder of recorded replies here");
    }

    void areReadAndShownInWhole()
    {
        QRandomGenerator random(11);
        int shortened = 0;
        for (const QString& folder : {u"anthropic"_s, u"gemini"_s}) {
            for (const QByteArray& line :
                 contents(corpora() + u'/' + folder + u"/expected.dev.jsonl"_s)
                     .trimmed()
                     .split('\n')) {
                const QJsonObject expected = QJsonDocument::fromJson(line).object();
                const QString file = expected[u"file"_s].toString();
                const QString text = expected[u"text"_s].toString();
                // A thought stands in a first part like any other text, so it is text to us.
                const int thoughtLength = expected[u"thought_chars"_s].toInt();
                const QByteArray body = contents(corpora() + u'/' + file);
                QVERIFY(!body.isEmpty());
                // A recorded refusal, whose status is not in the file.
                const bool isError = body.trimmed().startsWith('{');
                for (const int longest : {1, 7, 300, 1 << 30}) {
                    const InRow row(file, longest);
                    const Received received =
                        replay(folder == u"gemini", isError ? 400 : 200, body, longest);
                    QCOMPARE(received.error.isEmpty(), !isError);
                    QCOMPARE(received.text().size(), thoughtLength + text.size());
                    QCOMPARE(received.text().sliced(thoughtLength), text);
                }

                const InRow row(file);
                for (const int longest : {1, 12, 300})
                    streamInPieces(text, longest, random);
                MarkdownContentView view;
                view.setText(text);
                static_cast<void>(described(view));
                view.findChild<QTextBrowser*>()->selectAll();
                // A list leaves out what stands between its items: so does one of the replies.
                if (words(view.selectedText()) != words(text))
                    ++shortened;
            }
        }
        QVERIFY(shortened <= 1);
    }
};

VARNO_TEST(QApplication, RecordedRepliesTest)
#include "RecordedRepliesTest.moc"
