#include "reader/text/InlineMarkdown.h"

#include "tests/TestMain.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QXmlStreamReader>

using namespace Qt::StringLiterals;

namespace varno {
namespace {

/// Runs in a form that a failed comparison shows well: "plain|[si]strong italic|[>url]link".
QString described(const QList<InlineRun>& runs)
{
    QStringList parts;
    for (const InlineRun& run : runs) {
        QString style;
        style += run.styles.testFlag(InlineStyle::strong) ? u"s"_s : QString();
        style += run.styles.testFlag(InlineStyle::emphasis) ? u"e"_s : QString();
        style += run.styles.testFlag(InlineStyle::code) ? u"c"_s : QString();
        style += run.styles.testFlag(InlineStyle::strikethrough) ? u"x"_s : QString();
        if (!run.link.isEmpty())
            style += u'>' + QString::fromUtf8(QByteArray::fromPercentEncoding(run.link.toUtf8()));
        parts.append((style.isEmpty() ? QString() : u'[' + style + u']') + run.text);
    }
    return parts.join(u'|').replace(QChar(QChar::LineSeparator), u'/');
}

/// What the HTML of one paragraph implies.
class ParagraphReader {
public:
    /// Null when there is more to the HTML than inline Markdown.
    std::optional<QList<InlineRun>> read(const QString& html)
    {
        QXmlStreamReader reader(html.trimmed());
        while (!reader.atEnd() && m_isInline) {
            reader.readNext();
            if (reader.isStartElement())
                begin(reader.name().toString(), reader.attributes());
            else if (reader.isEndElement())
                end(reader.name().toString());
            else if (reader.isCharacters())
                addText(reader.text().toString());
        }
        if (reader.hasError() || !m_isInline)
            return std::nullopt;
        m_runs.removeIf([](const InlineRun& run) { return run.text.isEmpty(); });
        return m_runs;
    }

private:
    void begin(const QString& name, const QXmlStreamAttributes& attributes)
    {
        static const QStringList known = {u"p"_s, u"em"_s, u"strong"_s, u"code"_s,
                                          u"a"_s, u"br"_s, u"img"_s,    u"del"_s};
        m_isInline = known.contains(name) && (name != u"p" || m_open.isEmpty());
        m_open.append(name);
        if (name == u"a")
            m_link = attributes.value(u"href"_s).toString();
        if (name == u"img" && attributes.hasAttribute(u"alt"_s))
            add(attributes.value(u"alt"_s).toString());
        if (name == u"br")
            add(QString(QChar(QChar::LineSeparator)));
    }
    void end(const QString& name)
    {
        m_open.removeLast();
        if (name == u"a")
            m_link.clear();
    }
    void addText(QString text)
    {
        const bool afterBreak =
            !m_runs.isEmpty() && m_runs.last().text.endsWith(QChar(QChar::LineSeparator));
        if (afterBreak && text.startsWith(u'\n'))
            text.remove(0, 1);
        add(text.replace(u'\n', u' '));
    }
    void add(const QString& text)
    {
        InlineStyles styles;
        styles.setFlag(InlineStyle::strong, m_open.contains("strong"_L1));
        styles.setFlag(InlineStyle::emphasis, m_open.contains("em"_L1));
        styles.setFlag(InlineStyle::code, m_open.contains("code"_L1));
        styles.setFlag(InlineStyle::strikethrough, m_open.contains("del"_L1));
        if (m_runs.isEmpty() || m_runs.last().styles != styles || m_runs.last().link != m_link)
            m_runs.append({.text = {}, .styles = styles, .link = m_link});
        m_runs.last().text += text;
    }

    QList<InlineRun> m_runs;
    QStringList m_open; ///< elements
    QString m_link;
    bool m_isInline = true;
};

} // namespace

class InlineMarkdownTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void styles_data();
    void styles();
    void standardsExamples_data();
    void standardsExamples();
    void hostileText_data();
    void hostileText();
};

void InlineMarkdownTest::styles_data()
{
    QTest::addColumn<QString>("markdown");
    QTest::addColumn<QString>("expected");

    QTest::newRow("nested") << u"a **b *c* d** e"_s << u"a |[s]b |[se]c|[s] d| e"_s;
    QTest::newRow("strikethrough") << u"~~a~~ b"_s << u"[x]a| b"_s;
    QTest::newRow("single tildes")
        << u"(~3500 BCE) H~2~O ~~a~b~~ ~~~c~~~ `d~e` \\~~f~ <ftp:/~h&~>"_s
        << u"(~3500 BCE) H~2~O |[x]a~b| ~~~c~~~ |[c]d~e| ~~f~ "
           "|[>ftp:/~h&~]ftp:/~h&~"_s;
    QTest::newRow("code keeps marks") << u"`**a**`"_s << u"[c]**a**"_s;
    QTest::newRow("image") << u"a ![b *c*](http://x/y.png) d"_s << u"a b c d"_s;
    QTest::newRow("image that is a link") << u"[![*a*](x)](http://y)"_s << u"[>http://y]a"_s;
    QTest::newRow("entities") << u"&amp;&lt;b&gt; &#x41; &ngE; &nosuch;"_s
                              << u"&<b> A ≧\u0338 &nosuch;"_s;
    QTest::newRow("HTML") << u"List<String> <b>x</b> <!-- y --> <script>z"_s
                          << u"List<String> <b>x</b> <!-- y --> <script>z"_s;
    QTest::newRow("wrapped line") << u"a *b\n  c* d"_s << u"a |[e]b c| d"_s;
    QTest::newRow("hard breaks") << u"a  \nb\\\nc"_s << u"a/b/c"_s;
    QTest::newRow("heading") << u"#### Deep"_s << u"#### Deep"_s;
    QTest::newRow("quote") << u"> *a*"_s << u"> |[e]a"_s;
    QTest::newRow("list in a paragraph") << u"Such as:\n- *a*\n- b"_s << u"Such as:/- |[e]a|/- b"_s;
    QTest::newRow("numbers in a paragraph") << u"So:\n1. a\n2. b"_s << u"So:/1. a/2. b"_s;
    QTest::newRow("number by chance")
        << u"The answer is\n42. Really"_s << u"The answer is 42. Really"_s;
    QTest::newRow("fence") << u"```\na\n```"_s << u"[c]a"_s;
    QTest::newRow("underline of a heading") << u"a\n==="_s << u"a/==="_s;
    QTest::newRow("rule") << u"***"_s << u"***"_s;
    QTest::newRow("reference") << u"[a]: /b"_s << u"[a]: /b"_s;
    QTest::newRow("emphasis first") << u"*a* _b_"_s << u"[e]a| |[e]b"_s;
    QTest::newRow("emphasis on the second line") << u"x\n*a*"_s << u"x |[e]a"_s;
    QTest::newRow("lone line of blanks") << u"a\n \nb"_s << u"a/b"_s;
    QTest::newRow("kept for documents") << u"a\rb\u2029c\uFFFC\uFDD0"_s << u"a b/c\uFFFD\uFFFD"_s;
    QTest::newRow("zero") << u"a%1b"_s.arg(QChar(0)) << u"a\uFFFDb"_s;
    QTest::newRow("unpaired") << u"**a *b `c [d"_s << u"**a *b `c [d"_s;
}

void InlineMarkdownTest::styles()
{
    QFETCH(const QString, markdown);
    QFETCH(const QString, expected);
    QCOMPARE(described(styledText(markdown)), expected);
}

void InlineMarkdownTest::standardsExamples_data()
{
    QTest::addColumn<QString>("markdown");
    QTest::addColumn<QString>("expected");

    QFile file(qEnvironmentVariable("VARNO_CORPORA") + u"/commonmark/spec-0.31.2-inline.json"_s);
    if (!file.open(QIODevice::ReadOnly))
        QSKIP("The standard's examples are not there");
    const QJsonArray examples = QJsonDocument::fromJson(file.readAll()).array();
    for (const auto& example : examples) {
        const QString markdown = example[u"markdown"].toString().trimmed();
        const auto runs = ParagraphReader().read(example[u"html"].toString());
        // The addresses of references stand in blocks of their own.
        const bool isInline = runs && !markdown.contains(u"]:") && !markdown.contains(u"\n\n");
        const bool hasHTML = example[u"section"] == u"Raw HTML"_s || markdown.contains(u"<img");
        if (isInline && !hasHTML)
            QTest::addRow("%d", example[u"example"].toInt()) << markdown << described(*runs);
    }
}

void InlineMarkdownTest::standardsExamples()
{
    QFETCH(const QString, markdown);
    QFETCH(const QString, expected);
    // How many blanks are left where code wraps differs between versions of the parser.
    QCOMPARE(described(styledText(markdown)).simplified(), expected.simplified());
}

void InlineMarkdownTest::hostileText_data()
{
    QTest::addColumn<QString>("markdown");

    QTest::newRow("nested emphasis") << u"*a **b "_s.repeated(20000);
    QTest::newRow("nested brackets") << u"["_s.repeated(50000);
    QTest::newRow("nested links") << u"[a"_s.repeated(20000) + u"](b)"_s.repeated(20000);
    QTest::newRow("nested images") << u"![a"_s.repeated(20000) + u"](b)"_s.repeated(20000);
    QTest::newRow("ticks") << u"` `` "_s.repeated(20000);
    QTest::newRow("tags") << u"<a <!-- "_s.repeated(20000);
    QTest::newRow("entities") << u"&amp;&"_s.repeated(5000);
    QTest::newRow("stars") << u"*"_s.repeated(100000);
    QTest::newRow("strikethrough") << u"~~a ~b "_s.repeated(20000);
}

/// Ends, and loses no letter.
void InlineMarkdownTest::hostileText()
{
    QFETCH(const QString, markdown);
    const auto letters = [](const QString& text) { return text.count(u'a'); };
    const QString shown = plainText(styledText(markdown));
    QVERIFY(letters(shown) >= letters(markdown) - 5000); // those of "&amp;" are a mark
    QVERIFY(!shown.isEmpty());
}

} // namespace varno

VARNO_TEST(QCoreApplication, varno::InlineMarkdownTest)
#include "InlineMarkdownTest.moc"
