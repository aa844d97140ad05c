#include "reader/text/MarkdownContentView.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace varno {
namespace {

QList<QJsonObject> expectations(const QString& service)
{
    QFile file(qEnvironmentVariable("VARNO_CORPORA") + u'/' + service + u"/expected.dev.jsonl"_s);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(file.fileName()));
    QList<QJsonObject> objects;
    while (!file.atEnd())
        objects.append(QJsonDocument::fromJson(file.readLine()).object());
    return objects;
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

/// The texts of replies recorded from the real services. They are not part of the project: without
/// them these tests are skipped.
class RecordedTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!QDir(qEnvironmentVariable("VARNO_CORPORA", u"/nowhere"_s)).exists())
            QSKIP("there is no folder of recorded replies here");
    }

    void isShownInWhole_data()
    {
        QTest::addColumn<QString>("text");
        for (const QString& service : {u"anthropic"_s, u"gemini"_s}) {
            for (const QJsonObject& expected : expectations(service))
                QTest::newRow(qPrintable(expected[u"file"_s].toString()))
                    << expected[u"text"_s].toString();
        }
    }
    void isShownInWhole()
    {
        QFETCH(const QString, text);
        MarkdownContentView atOnce;
        atOnce.setText(text);
        const QString whole = described(atOnce);
        QCOMPARE(lettersAndDigits(atOnce.selectedText()), visible(text));

        QRandomGenerator random(11);
        for (const int longest : {1, 12, 300}) {
            MarkdownContentView streamed;
            for (qsizetype begin = 0; begin < text.size();) {
                const qsizetype length =
                    std::min<qsizetype>(random.bounded(1, longest + 1), text.size() - begin);
                streamed.appendText(QStringView(text).sliced(begin, length));
                begin += length;
            }
            QCOMPARE(described(streamed), whole);
        }
    }
};

} // namespace varno

VARNO_TEST(QApplication, varno::RecordedTextTest)
#include "RecordedTextTest.moc"
