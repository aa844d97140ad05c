#include "reader/text/SelectedHtml.h"
#include "reader/text/SelectedText.h"
#include "tests/PageText.h"
#include "tests/Test.h"

namespace {

const QString everyForm =
    u"Code:\n```py\nif a_b:\n\tpass  \n\n    # no *mark*\n\n    b = `c`\n\n```\n\n> quoted **a**\n"
    "> > nested\n>\n> again\nafter\n---\n\n| Name | *N* |\n|:--|--:|\n| a \\| b | 1 |\n| c |\n"
    "| d | 2 | 3 |\nSource: x\n\na | b\n--|--\n1 | 2\nthree\n\n***\n\n~~~~\n```\n~~~~\nx\n|y\n|-"_s;

/// The rows of a text, each with a letter for its form.
QStringList rowsOf(const QString& text)
{
    QStringList rows;
    RowReader reader(text);
    while (const auto row = reader.next()) {
        const RowStart& start = row->start;
        const QString number = start.number > 0 ? QString::number(start.number) : QString();
        rows.append(QString(u"tcqxrh"[static_cast<int>(start.form)]) +
                    (start.isHeader ? u"!"_s : u""_s) + number + u' ' + row->text.toString());
    }
    return rows;
}

} // namespace

/// What a paragraph may be set as: code, quotes, tables and rules.
class RowFormsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tellsForms()
    {
        for (const auto& [text, rows] :
             Rows<QString, QStringList>{{everyForm,
                                         {u"t Code:"_s,
                                          u"c if a_b:"_s,
                                          u"c \tpass"_s,
                                          u"t no *mark*"_s,
                                          u"c     b = `c`"_s,
                                          u"h "_s,
                                          u"q1 quoted **a**"_s,
                                          u"q2 nested"_s,
                                          u"q1 "_s,
                                          u"q1 again"_s,
                                          u"t after"_s,
                                          u"r "_s,
                                          u"x! Name"_s,
                                          u"x!1 *N*"_s,
                                          u"x a \\| b"_s,
                                          u"x1 1"_s,
                                          u"x c"_s,
                                          u"x d"_s,
                                          u"x1 2 | 3"_s,
                                          u"t Source: x"_s,
                                          u"x! a"_s,
                                          u"x!1 b"_s,
                                          u"x 1"_s,
                                          u"x1 2"_s,
                                          u"x three"_s,
                                          u"r "_s,
                                          u"c ```"_s,
                                          u"t x"_s,
                                          u"x! y"_s}},
                                        {u"- ```\n  a\n  ```\n\nb"_s, {u"t ```"_s, u"t b"_s}},
                                        {u"```a`b\nc"_s, {u"t ```a`b\nc"_s}},
                                        {u"a\n|b\n|-x"_s, {u"t a\n|b\n|-x"_s}},
                                        {u"a | b\n---"_s, {u"t a | b"_s, u"r "_s}}}) {
            const InRow row(text);
            QCOMPARE(rowsOf(text), rows);
        }
    }

    void streamsWhatIsBuiltAtOnce()
    {
        MarkdownContentView oneByOne;
        for (qsizetype length = 1; length <= everyForm.size(); ++length) {
            oneByOne.appendText(QStringView(everyForm).sliced(length - 1, 1));
            MarkdownContentView atOnce;
            atOnce.setText(everyForm.first(length));
            const InRow row(length, everyForm.first(length).right(30));
            QCOMPARE(described(oneByOne), described(atOnce));
        }
        QRandomGenerator random(7);
        MarkdownContentView other;
        for (int round = 0; round < 60; ++round) {
            const QString cut =
                everyForm.first(random.bounded(everyForm.size())) + everyForm.last(round);
            other.setText(cut);
            MarkdownContentView atOnce;
            atOnce.setText(cut);
            QCOMPARE(described(other), described(atOnce));
        }
        for (int round = 0; round < 40; ++round) {
            QString text = everyForm; // and what nobody thought of
            for (int change = 0; change < 6; ++change)
                text.insert(random.bounded(text.size()),
                            QStringList({u"\n"_s, u"```\n"_s, u"|"_s, u">"_s, u"\n---\n"_s,
                                         u"\n\n"_s})[random.bounded(6)]);
            const InRow row(text);
            streamInPieces(text, 9, random);
        }
    }

    void placesCells()
    {
        QWidget window;
        window.resize(600, 400);
        MarkdownContentView view(&window);
        view.resize(600, 0);
        window.show();
        const QString wide = u"longwordiskept "_s;
        view.setText(u"|a|b|\n|:-|-:|\n|c d|%1|\n|f|g|\n\n|%2\n|%3"_s.arg(
            u"e "_s.repeated(400), (wide + u'|').repeated(9), u"-|"_s.repeated(9)));
        const auto rectOf = [&](int row) {
            const QTextBlock block = view.document().findBlockByNumber(row);
            return view.document().documentLayout()->blockBoundingRect(block);
        };
        QCOMPARE(rectOf(2).top(), rectOf(3).top());
        QVERIFY(rectOf(3).left() > rectOf(2).right());
        QVERIFY(rectOf(3).right() <= 600 && rectOf(3).height() > 5 * rectOf(2).height());
        QCOMPARE(rectOf(5).left(), rectOf(3).left());
        QVERIFY(rectOf(4).top() > rectOf(3).bottom());
        const QTextBlock right = view.document().findBlockByNumber(5);
        QVERIFY(right.layout()->lineAt(0).naturalTextRect().left() > 570);

        // A table that is wider than the column is moved by a wheel that goes sideways.
        const double width = rectOf(14).right();
        QVERIFY(width > 1000);
        auto* surface = view.findChild<QTextBrowser*>()->viewport();
        const QPointF place = rectOf(8).center();
        QWheelEvent sideways(place, place, {}, {-3000, 0}, {}, {}, Qt::NoScrollPhase, false);
        QApplication::sendEvent(surface, &sideways);
        QCOMPARE(rectOf(14).right(), 600);
        QVERIFY(rectOf(6).left() < 0 && rectOf(0).left() == 0);
        QCOMPARE(view.document().documentLayout()->hitTest({599, place.y()}, Qt::FuzzyHit),
                 view.document().findBlockByNumber(14).position() + 14);
    }

    void copiesWhatItShows()
    {
        MarkdownContentView view;
        view.setText(
            u"## A & *b*\n\n- c\n- **d**\n\n3. e\n\n```\nf <g>\n\n  h\n```\n\n> i\n> > j\n\n"
            "|k|l|\n|-|-:|\n|[m](https://n.o/)|p |\n\n---\n\n[https://q.r](https://q.r)<br>"
            "s ~~t~~ `u` x<sup>2</sup>"_s);
        QTextCursor cursor(&const_cast<QTextDocument&>(view.document()));
        cursor.select(QTextCursor::Document);
        QCOMPARE(selectedTextWithLinks(cursor),
                 u"A & b\n\n- c\n- d\n\n3. e\n\nf <g>\n\n  h\n\ni\nj\n\nk\tl\n"
                 "m (https://n.o/)\tp\n\n---\n\nhttps://q.r\ns t u x2"_s);
        QCOMPARE(selectedHtml(cursor),
                 u"<h2>A &amp; <em>b</em></h2><ul><li>c</li><li><strong>d</strong></li></ul>"
                 "<ol><li value=\"3\">e</li></ol><pre>f &lt;g&gt;\n\n  h</pre><blockquote><p>i</p>"
                 "<blockquote><p>j</p></blockquote></blockquote><table><tr><th>k</th>"
                 "<th align=\"right\">l</th></tr><tr><td><a href=\"https://n.o/\">m</a></td>"
                 "<td align=\"right\">p</td></tr></table><hr>"
                 "<p><a href=\"https://q.r\">https://q.r</a><br>s <s>t</s> <code>u</code> "
                 "x<sup>2</sup></p>"_s);
        cursor.setPosition(1);
        cursor.setPosition(5, QTextCursor::KeepAnchor);
        QCOMPARE(selectedHtml(cursor), u" &amp; <em>b</em>"_s); // within a paragraph
    }
};

VARNO_TEST(QApplication, RowFormsTest)
#include "RowFormsTest.moc"
