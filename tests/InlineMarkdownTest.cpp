#include "reader/text/InlineMarkdown.h"

#include "tests/Test.h"

namespace {

struct Look {
    InlineStyle style = {};
    QChar letter;
};
constexpr std::array looks = {
    Look{InlineStyle::strong, u's'},    Look{InlineStyle::emphasis, u'e'},
    Look{InlineStyle::code, u'c'},      Look{InlineStyle::strikethrough, u'x'},
    Look{InlineStyle::subscript, u'5'}, Look{InlineStyle::superscript, u'6'}};

/// Runs in a form that a failed comparison shows well: "plain|[se]strong italic|[>url]link".
QString described(const QList<InlineRun>& runs)
{
    QStringList parts;
    for (const InlineRun& run : runs) {
        QString style;
        for (const Look& look : looks)
            style += run.styles.testFlag(look.style) ? QString(look.letter) : QString();
        if (!run.link.isEmpty())
            style += u'>' + QString::fromUtf8(QByteArray::fromPercentEncoding(run.link.toUtf8()));
        parts.append((style.isEmpty() ? QString() : u'[' + style + u']') + run.text);
    }
    return parts.join(u'|').replace(QChar(QChar::LineSeparator), u'/');
}

} // namespace

class InlineMarkdownTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void styles()
    {
        for (const auto& [markdown, expected] : Rows<QString, QString>{
                 {u"a **b *c* d** e"_s, u"a |[s]b |[se]c|[s] d| e"_s},
                 {u"[*a*](/b?c=1&amp;d~e \"f\") \\*g\\* `` h` ``"_s,
                  u"[e>/b?c=1&d~e]a| *g* |[c]h`"_s},
                 {u"(~3500 BCE) H~2~O ~~a~b~~ ~~~c~~~ `d~e` \\~~f~ <ftp:/~h&~>"_s,
                  u"(~3500 BCE) H~2~O |[x]a~b| ~~~c~~~ |[c]d~e| ~~f~ "
                  "|[>ftp:/~h&~]ftp:/~h&~"_s},
                 {u"`**a**`"_s, u"[c]**a**"_s},
                 {u"a ![b *c*](http://x/y.png) d"_s, u"a b c d"_s},
                 {u"[![*a*](x)](http://y) ![b](x) *c*"_s, u"[>http://y]a| b |[e]c"_s},
                 {u"&amp;&lt;b&gt; &#x41; &ngE; &nosuch;"_s, u"&<b> A ≧\u0338 &nosuch;"_s},
                 {u"List<String> <b>x</b> <!-- y --> <b>z"_s,
                  u"List<String> |[s]x| <!-- y --> <b>z"_s},
                 {u"H<sub>2</sub>O<BR/>*a<sup>b* c</sup></i> <b id=x>y</b>"_s,
                  u"H|[5]2|O/|[e]a|[e6]b|[6] c|</i> <b id=x>y</b>"_s},
                 {u"\\(a_1 *b* ~c~\\) \\[d\\, e\\* `\\(`"_s,
                  u"\\(a_1 *b* ~c~\\) \\[d\\, e* |[c]\\("_s},
                 {u"a\n$$\n- x_1\n$$\nb *c*"_s, u"a/$$/- x_1/$$/b |[e]c"_s},
                 {u"see https://a.b/c_d. www.e.org"_s,
                  u"see |[>https://a.b/c_d]https://a.b/c_d|. |[>http://www.e.org]www.e.org"_s},
                 {u"a\n1. b\n   - c\n2. d\ne\n3. f"_s, u"a/1. b/- c/2. d e/3. f"_s},
                 {u"a *b\n  c* d"_s, u"a |[e]b c| d"_s},
                 {u"a  \nb\\\nc"_s, u"a/b/c"_s},
                 {u"#### Deep"_s, u"#### Deep"_s},
                 {u"> *a*"_s, u"> |[e]a"_s},
                 {u"Such as:\n- *a*\n- b"_s, u"Such as:/- |[e]a|/- b"_s},
                 {u"So:\n1. a\n2. b"_s, u"So:/1. a/2. b"_s},
                 {u"The answer is\n42. Really"_s, u"The answer is 42. Really"_s},
                 {u"```\na\n```"_s, u"[c]a"_s},
                 {u"a\n==="_s, u"a/==="_s},
                 {u"***"_s, u"***"_s},
                 {u"[a]: /b"_s, u"[a]: /b"_s},
                 {u"x\n*a* _b_"_s, u"x |[e]a| |[e]b"_s},
                 {u"a\n \nb"_s, u"a/b"_s},
                 {u"a\rb\u2029c\uFFFC\uFDD0"_s, u"a b/c\uFFFD\uFFFD"_s},
                 {u"a%1b"_s.arg(QChar(0)), u"a\uFFFDb"_s},
                 {u"**a *b `c [d"_s, u"**a *b `c [d"_s}}) {
            const InRow row(markdown);
            QCOMPARE(described(styledText(markdown)), expected);
        }
    }
};

VARNO_TEST(QCoreApplication, InlineMarkdownTest)
#include "InlineMarkdownTest.moc"
