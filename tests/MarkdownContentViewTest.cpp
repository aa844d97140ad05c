
#include "kit/Theme.h"
#include "tests/PageText.h"
#include "tests/Test.h"

#include <QDesktopServices>
#include <QGuiApplication>
#include <QTextLayout>

namespace {

/// A view with a width of its own, on screen.
struct ShownView {
    explicit ShownView(int width = 500)
    {
        window.resize(width, 600);
        view.resize(width, 0);
        window.show();
    }

    QWidget window;
    MarkdownContentView view{&window};
};

QString builtAtOnce(const QString& text)
{
    MarkdownContentView view;
    view.setText(text);
    return described(view);
}

QTextBrowser& surfaceOf(MarkdownContentView& view)
{
    return *view.findChild<QTextBrowser*>();
}

void select(MarkdownContentView& view, int from, int to)
{
    QTextCursor cursor = surfaceOf(view).textCursor();
    cursor.setPosition(from);
    cursor.setPosition(to, QTextCursor::KeepAnchor);
    surfaceOf(view).setTextCursor(cursor);
}

const QString everyKind =
    u"\n# One\n## Two\nA *body* with `code` and\na [link](http://a.b)\n\n**Bold header**\n\n"
    "- first **item**\nstray\n* second\n- \n\n1. a\n2. b\n10. c ~~d~~\n\n\n### Three\n\n"
    "2024 was a year that was longer than others. It rained.\n\n**a** b\n\n#### Deep\n  \n"_s;

} // namespace

class MarkdownContentViewTest : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void open(const QUrl& url) { m_opened.append(url.toString()); }

private Q_SLOTS:
    void streamsWhatIsBuiltAtOnce()
    {
        for (const QString& text :
             {everyKind, u"**a**b\n\n1 a. b\nc\n\n# a\n\n-\n- b\n\n**a\n**\n\n- a\n\n- b"_s,
              u"a **b *c** d* `e\n~~f~~ [g](http://h \"i\") &amp; ![j](k)"_s,
              u"1234\r5678. x\n9.\u2029999999999999999. y\n1234. z\n123456. z\n1. z"_s,
              u"שלום **עולם**\n\n- مرحبا\n\n👩‍👧 é"_s,
              u"\u2764\uFE0F"_s.repeated(70) + u"\U0001F600"_s.repeated(40),
              u"3"_s.repeated(4090) + u"**bold** and more. Then\n- b"_s}) {
            const InRow row(text);
            // Each beginning of the text equals what is built at once; reached letter by letter...
            MarkdownContentView oneByOne;
            const qsizetype first = text.size() > 1000 ? 4080 : 0;
            oneByOne.appendText(QStringView(text).first(first));
            for (qsizetype length = first + 1; length <= text.size(); ++length) {
                oneByOne.appendText(QStringView(text).sliced(length - 1, 1));
                QCOMPARE(described(oneByOne), builtAtOnce(text.first(length)));
            }
            // ... in pieces of any length...
            QRandomGenerator random(7);
            for (int round = 0; round < 20; ++round)
                streamInPieces(text, 20, random);
            // ... and from any other text, such as one that was cut short.
            MarkdownContentView other;
            for (int round = 0; round < 60; ++round) {
                const QString cut = text.first(random.bounded(text.size() + 1)) +
                                    text.last(random.bounded(std::min<qsizetype>(text.size(), 30)));
                other.setText(cut);
                QCOMPARE(described(other), builtAtOnce(cut));
            }
        }
    }

    /// What stands before the first difference is not even laid out again.
    void changesOnlyWhatDiffers()
    {
        ShownView shown;
        shown.view.setText(u"\n\nFirst.\n\nSecond.\n\nThird, with a long tail</entry>"_s);
        int from = -1;
        connect(
            &shown.view.document(), &QTextDocument::contentsChange, this,
            [&](int position, int, int) { from = from < 0 ? position : std::min(from, position); });
        shown.view.setText(u"First.\n\nSecond.\n\nThird, with a long tail"_s);
        QVERIFY(from >= u"First.\nSecond.\n"_s.size());
    }

    void hasTheFiguresOfEachKind()
    {
        constexpr double text = 1.4 * 16;
        const QString words = u"- some words that take two lines"_s;
        const auto kinds = Rows<QString, int, int, double>{
            {u"# a"_s, 25, 300, 20},         {u"## a"_s, 21, 600, 14},
            {u"### a"_s, 18, 600, 10 + 6}, // above a bold header
            {u"**a**"_s, 17, 700, 10},       {words, 0, 400, text},
            {words.sliced(2), 0, 400, text}, {u"1. a"_s, 0, 400, text}};
        ShownView shown(120);
        QString page;
        for (const auto& kind : kinds)
            page += std::get<0>(kind) + u"\n\n"_s;
        shown.view.setText(page);
        const QTextDocument& document = shown.view.document();
        int index = 0;
        for (const auto& [block, size, weight, below] : kinds) {
            const InRow row(block);
            const QTextCharFormat format =
                document.findBlockByNumber(index).begin().fragment().charFormat();
            QCOMPARE(format.intProperty(QTextFormat::FontPixelSize), size);
            QCOMPARE(format.fontWeight(), weight);
            const QRectF place = shown.view.blockRect(index++);
            const QRectF next = shown.view.blockRect(index);
            const double end = next.isNull() ? shown.view.height() : next.top();
            QVERIFY(std::abs(end - place.bottom() - below) <= 1.5); // rounded
        }
        for (const auto& [block, lineSpacing] : {std::pair(4, 0.0), {5, 0.45 * 16}}) {
            const QTextLayout& layout = *document.findBlockByNumber(block).layout();
            const QTextLine line = layout.lineAt(0);
            const double between = layout.lineAt(1).y() - line.y() - line.height();
            QVERIFY(std::abs(between - lineSpacing) < 0.1);
        }
        shown.view.setText(u" \n"_s);
        QCOMPARE(shown.view.height(), 0);
    }

    void placesMarks()
    {
        ShownView shown;
        shown.view.setText(u"- a\n- b\n\n1. c\n\n- שלום\n\n2024 was quite a year. It rained."_s);
        const QTextDocument& document = shown.view.document();
        const auto lineOf = [&](int row) {
            return document.findBlockByNumber(row).layout()->lineAt(0);
        };
        const auto topOf = [&](int row) {
            return document.findBlockByNumber(row).layout()->position().y();
        };
        QCOMPARE(lineOf(0).x(), 20.0); // 10 for the bullet, 10 between
        QVERIFY(std::abs(topOf(1) - topOf(0) - lineOf(0).height() - 5) < 0.1);
        QCOMPARE(lineOf(2).x(), 34.0); // 24 for the number, 10 between
        const QTextLine hebrew = lineOf(3);
        QVERIFY(std::abs(hebrew.naturalTextRect().right() - (shown.view.width() - 20)) < 1);
        QCOMPARE(lineOf(4).x(), 0.0); // a sentence

        // The marks are on screen: there is ink in their frames.
        const QImage image = shown.view.grab().toImage();
        const auto hasInk = [&](int row, int left, int width) {
            for (int y = 0; y < int(lineOf(row).height()); ++y)
                for (int x = left; x < left + width; ++x)
                    if (qGray(image.pixel(x, int(topOf(row)) + y)) < 160)
                        return true;
            return false;
        };
        QVERIFY(hasInk(0, 2, 6));
        QVERIFY(hasInk(2, 4, 20));
        QVERIFY(hasInk(3, shown.view.width() - 8, 6));
    }

    void keepsSelection()
    {
        ShownView shown;
        shown.view.setText(u"\nFirst block.\n\nSecond blo"_s);
        select(shown.view, 6, 19);
        QCOMPARE(shown.view.selectedText(), u"block.\n\nSecond"_s);
        shown.view.appendText(u"ck, **open"_s);
        shown.view.appendText(u"** and closed\n\nThird."_s);
        QCOMPARE(shown.view.selectedText(), u"block.\n\nSecond"_s);
        shown.view.reviseText(u"First block.\n\nSecond block, **open** and closed"_s);
        QCOMPARE(shown.view.selectedText(), u"block.\n\nSecond"_s);

        shown.view.setFontSize(19);
        QCOMPARE(shown.view.document().defaultFont().pixelSize(), 19);
        shown.view.setTextColor(Qt::red);
        QCOMPARE(shown.view.selectedText(), u"block.\n\nSecond"_s);

        // One that ends where the text ends does not grow with it.
        surfaceOf(shown.view).selectAll();
        const QString all = shown.view.selectedText();
        shown.view.appendText(u" more.\n\nLast."_s);
        QCOMPARE(shown.view.selectedText(), all);
        shown.view.setText(all); // another page, however alike
        QCOMPARE(shown.view.selectedText(), QString());
    }

    void opensOnlySomeLinks()
    {
        const QStringList schemes = {u"http"_s, u"https"_s, u"mailto"_s, u"file"_s,
                                     u"javascript"_s};
        for (const QString& scheme : schemes)
            QDesktopServices::setUrlHandler(scheme, this, "open");
        ShownView shown;
        shown.view.setText(
            u"[aaaa](https://b.c/)\n\n[aaaa](file:///etc/passwd)\n\n[aaaa](javascript:x)\n\n"
            "[aaaa](mailto:x@y.z)\n\n[aaaa](relative)"_s);
        for (int block = 0; block < 5; ++block) {
            const QRect rect = shown.view.blockRect(block);
            QTest::mouseClick(surfaceOf(shown.view).viewport(), Qt::LeftButton, {},
                              rect.topLeft() + QPoint(8, rect.height() / 2));
        }
        QCOMPARE(m_opened, (QStringList{u"https://b.c/"_s, u"mailto:x@y.z"_s}));
        // By keyboard: Tab goes to the link, Return follows it.
        surfaceOf(shown.view).setFocus();
        QTest::keyClick(&surfaceOf(shown.view), Qt::Key_Tab);
        QTest::keyClick(&surfaceOf(shown.view), Qt::Key_Return);
        QCOMPARE(m_opened.size(), 3);
        for (const QString& scheme : schemes)
            QDesktopServices::unsetUrlHandler(scheme);
    }

    void highlightsBehindTheText()
    {
        ShownView shown;
        shown.view.setTextColor(Qt::black);
        shown.view.setText(u"\u0130 \U0001F469\u200D\U0001F467 e\u0301 **th**e end"_s);
        QVERIFY(QTest::qWaitForWindowExposed(shown.view.window()));
        const QTextBlock row = shown.view.document().firstBlock();
        const QTextLine line = row.layout()->lineAt(0);
        const int match = int(row.text().indexOf(u"the"));
        const auto isYellow = [&](double x) {
            const QImage image = shown.view.grab(shown.view.blockRect(0)).toImage();
            const QColor color = image.pixelColor(int(x), 1);
            return color.red() > 200 && color.blue() < color.red() - 40;
        };
        for (const QString& text : {u"THE"_s, QString()}) {
            shown.view.setHighlightText(text);
            for (const int inside : {2, -2}) { // at its begin, and at its end
                const double edge = line.cursorToX(inside > 0 ? match : match + 3);
                QCOMPARE(isYellow(edge + inside), !text.isEmpty());
                QVERIFY(!isYellow(edge - inside));
            }
        }
        setTheme(*shown.view.window(), AppTheme::dark);
        surfaceOf(shown.view).selectAll();
        const QImage selected = shown.view.grab().toImage();
        shown.view.setHighlightText(u"the"_s);
        QVERIFY(shown.view.grab().toImage() != selected); // it shows there too
    }

    void writesLongPagesBitByBit()
    {
        const QString page =
            (u"Some words of a paragraph that goes on for a while. "_s.repeated(20) + u"\n\n"_s)
                .repeated(2000);
        ShownView shown;
        shown.view.setText(page);
        QVERIFY(shown.view.document().blockCount() < 2000);
        QTRY_COMPARE(shown.view.document().blockCount(), 2000);
        shown.view.setFontSize(19);
        QVERIFY(shown.view.document().blockCount() < 2000);
        QVERIFY(!shown.view.blockRect(1999).isNull()); // asked for, it is there
        QVERIFY(shown.view.blockRect(2000).isNull());
        QCOMPARE(shown.view.document().blockCount(), 2000);
    }

    void endsWithHostileText()
    {
        for (const QString& text :
             {u"x"_s.repeated(1000000), u"- a\n"_s.repeated(100000), u"*a **b "_s.repeated(20000),
              u"![a"_s.repeated(20000) + u"](b)"_s.repeated(20000),
              u"~~a ~b \\(<b>"_s.repeated(20000), u"a"_s + u"\u0301"_s.repeated(20000),
              u"1"_s.repeated(500000) + u". a"_s, u"```\nx\n"_s.repeated(100000),
              u"> "_s.repeated(5000) + u"x"_s,
              u"a|"_s.repeated(2000) + u'\n' + u"-|"_s.repeated(2000),
              u"|a|\n|-|\n"_s + u"|\n"_s.repeated(100000)}) {
            const InRow row(text.first(8));
            ShownView shown;
            shown.view.setText(text);
            shown.view.grab(QRect(0, 0, 500, 600));
            QVERIFY(shown.view.height() > 0);
            shown.view.appendText(u" more"_s);
        }
    }

private:
    QStringList m_opened;
};

VARNO_TEST(QApplication, MarkdownContentViewTest)
#include "MarkdownContentViewTest.moc"
