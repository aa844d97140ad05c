#include "reader/text/MarkdownContentView.h"

#include "kit/Theme.h"
#include "tests/TestMain.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QRandomGenerator>
#include <QTextLayout>

using namespace Qt::StringLiterals;

namespace varno {
namespace {

/// All that a document says of its rows, in a form that a failed comparison shows well.
QStringList described(const QTextDocument& document)
{
    QStringList rows;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const QTextBlockFormat format = block.blockFormat();
        QString row = u"%1 %2 %3 %4 %5 %6 %7: "_s.arg(format.intProperty(rowBlock))
                          .arg(format.intProperty(rowEnd))
                          .arg(format.topMargin())
                          .arg(format.bottomMargin())
                          .arg(format.leftMargin())
                          .arg(format.lineHeight())
                          .arg(format.stringProperty(rowMark));
        QTextCharFormat previous;
        for (auto fragment = block.begin(); !fragment.atEnd(); ++fragment) {
            const QTextCharFormat look = fragment.fragment().charFormat();
            if (look != previous)
                row += u"[%1 %2 %3 %4 %5 %6]"_s.arg(look.intProperty(QTextFormat::FontPixelSize))
                           .arg(look.fontWeight())
                           .arg(look.fontItalic())
                           .arg(look.fontStrikeOut())
                           .arg(look.fontFamilies().toStringList().join(u','))
                           .arg(look.anchorHref());
            previous = look;
            row += fragment.fragment().text();
        }
        rows.append(row);
    }
    return rows;
}

/// A view with a width of its own, on screen.
class ShownView {
public:
    explicit ShownView(int width = 500)
    {
        m_window.resize(width, 600);
        view.setParent(&m_window);
        view.resize(width, 0);
        m_window.show();
        view.show();
    }

private:
    QWidget m_window;

public:
    MarkdownContentView view;
};

/// The document once it is written to its end: under load a slice of time is soon over.
QStringList describedWhole(MarkdownContentView& view)
{
    constexpr int beyondAllBlocks = 1 << 20;
    static_cast<void>(view.blockRect(beyondAllBlocks));
    return described(view.document());
}

QStringList builtAtOnce(const QString& text)
{
    ShownView shown;
    shown.view.setText(text);
    return describedWhole(shown.view);
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

private Q_SLOTS:
    void streamsWhatIsBuiltAtOnce_data();
    void streamsWhatIsBuiltAtOnce();
    void changesOnlyWhatDiffers();
    void hasTheFiguresOfEachKind_data();
    void hasTheFiguresOfEachKind();
    void placesMarks();
    void copiesCleanText();
    void keepsSelectionWhileStreaming();
    void keepsSelectionOverSizes();
    void opensOnlySomeLinks();
    void highlightsBehindTheText();
    void writesLongPagesBitByBit();
    void endsWithHostileText_data();
    void endsWithHostileText();
};

void MarkdownContentViewTest::streamsWhatIsBuiltAtOnce_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("every kind") << everyKind;
    QTest::newRow("unsettled starts")
        << u"**a**b\n\n1 a. b\nc\n\n# a\n\n-\n- b\n\n**a\n**\n\n- a\n\n- b"_s;
    QTest::newRow("newlines") << u"\n\na\n\n\n\n\nb\n \n\n \nc\n"_s;
    QTest::newRow("open marks") << u"a **b *c** d* `e\n~~f~~ [g](http://h \"i\") &amp; ![j](k)"_s;
    QTest::newRow("wide marks")
        << u"1234\r5678. x\n9.\u2029999999999999999. y\n1234. z\n123456. z\n1. z"_s;
    QTest::newRow("headings in a row") << u"# A\n## B\n\n### C\n# D\nE\n# F"_s;
    QTest::newRow("scripts") << u"שלום **עולם**\n\n- مرحبا\n\n👩‍👧 é"_s;
    QTest::newRow("pictures") << u"\u2764\uFE0F"_s.repeated(70) + u"\U0001F600"_s.repeated(40);
    QTest::newRow("long word") << u"3"_s.repeated(4090) + u"**bold** and more. Then\n- b"_s;
}

void MarkdownContentViewTest::streamsWhatIsBuiltAtOnce()
{
    QFETCH(const QString, text);
    // Each beginning of the text equals what is built at once; reached character by character...
    ShownView oneByOne;
    const qsizetype first = text.size() > 1000 ? 4080 : 0;
    oneByOne.view.appendText(QStringView(text).first(first));
    for (qsizetype length = first + 1; length <= text.size(); ++length) {
        oneByOne.view.appendText(QStringView(text).sliced(length - 1, 1));
        QCOMPARE(describedWhole(oneByOne.view), builtAtOnce(text.first(length)));
    }
    // ... in pieces of any length...
    QRandomGenerator random(7);
    for (int round = 0; round < 20; ++round) {
        ShownView shown;
        for (qsizetype begin = 0; begin < text.size();) {
            const qsizetype length =
                random.bounded(qsizetype(1), std::min<qsizetype>(20, text.size() - begin) + 1);
            shown.view.appendText(QStringView(text).sliced(begin, length));
            begin += length;
        }
        QCOMPARE(describedWhole(shown.view), builtAtOnce(text));
    }
    // ... and from any other text, such as one that was cut short.
    ShownView other;
    for (int round = 0; round < 60; ++round) {
        const QString cut = text.first(random.bounded(text.size() + 1)) +
                            text.last(random.bounded(std::min<qsizetype>(text.size(), 30)));
        other.view.setText(cut);
        QCOMPARE(describedWhole(other.view), builtAtOnce(cut));
    }
}

/// What stands before the first difference is not even laid out again.
void MarkdownContentViewTest::changesOnlyWhatDiffers()
{
    ShownView shown;
    shown.view.setText(u"\n\nFirst.\n\nSecond.\n\nThird, with a long tail</entry>"_s);
    int from = -1;
    connect(&shown.view.document(), &QTextDocument::contentsChange, this,
            [&](int position, int, int) { from = from < 0 ? position : std::min(from, position); });
    shown.view.setText(u"First.\n\nSecond.\n\nThird, with a long tail"_s);
    QVERIFY(from >= u"First.\nSecond.\n"_s.size());
    QCOMPARE(shown.view.document().toPlainText(), u"First.\nSecond.\nThird, with a long tail"_s);

    // The row before the difference ends its list now.
    shown.view.setText(u"- a\n- b"_s);
    shown.view.setText(u"- a\n- "_s);
    QCOMPARE(describedWhole(shown.view), builtAtOnce(u"- a\n- "_s));
}

void MarkdownContentViewTest::hasTheFiguresOfEachKind_data()
{
    QTest::addColumn<QString>("block");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("weight");
    QTest::addColumn<double>("lineSpacing");
    QTest::addColumn<double>("above");
    QTest::addColumn<double>("below");
    constexpr double text = 1.4 * 16;
    QTest::newRow("bold header") << u"**a**"_s << 17 << 700 << 0.0 << 6.0 << 10.0;
    QTest::newRow("heading 3") << u"### a"_s << 18 << 600 << 0.0 << 0.0 << 10.0;
    QTest::newRow("heading 2") << u"## a"_s << 21 << 600 << 0.0 << 0.0 << 14.0;
    QTest::newRow("heading 1") << u"# a"_s << 25 << 300 << 0.0 << 0.0 << 20.0;
    QTest::newRow("paragraph") << u"a"_s << 16 << 400 << 0.45 * 16 << 0.0 << text;
    QTest::newRow("bullet") << u"- a"_s << 16 << 400 << 0.0 << 0.0 << text;
    QTest::newRow("number") << u"1. a"_s << 16 << 400 << 0.0 << 0.0 << text;
}

void MarkdownContentViewTest::hasTheFiguresOfEachKind()
{
    QFETCH(const QString, block);
    QFETCH(const int, size);
    QFETCH(const int, weight);
    QFETCH(const double, lineSpacing);
    QFETCH(const double, above);
    QFETCH(const double, below);
    ShownView shown(120);
    const QString words = u" and some more words"_s.repeated(4);
    shown.view.setText(
        u"# x\n\n%1%2\n\n# y"_s.arg(block.endsWith("**"_L1) ? block.chopped(2) : block)
            .arg(block.endsWith("**"_L1) ? words + u"**"_s : words));
    const QTextBlock row = shown.view.document().findBlockByNumber(1);
    const QFont font = row.begin().fragment().charFormat().font();
    const QFont shownFont = font.resolve(shown.view.document().defaultFont());
    QCOMPARE(shownFont.pixelSize(), size);
    QCOMPARE(static_cast<int>(shownFont.weight()), weight);

    const QTextLayout& layout = *row.layout();
    QVERIFY(layout.lineCount() > 1);
    const QTextLine line = layout.lineAt(0);
    QVERIFY(std::abs(layout.lineAt(1).y() - line.y() - line.height() - lineSpacing) < 0.1);
    const auto rectOf = [&](int index) { return QRectF(shown.view.blockRect(index)); };
    QVERIFY(std::abs(rectOf(1).top() - rectOf(0).bottom() - 20 - above) <= 1.5);
    QVERIFY(std::abs(rectOf(2).top() - rectOf(1).bottom() - below) <= 1.5);

    // First in the column, and last: the space around it is there too.
    shown.view.setText(block);
    QVERIFY(std::abs(shown.view.blockRect(0).top() - above) <= 1);
    QVERIFY(std::abs(shown.view.height() - rectOf(0).bottom() - below) <= 1.5);
    shown.view.setText(u" \n"_s);
    QCOMPARE(shown.view.height(), 0);
}

void MarkdownContentViewTest::placesMarks()
{
    ShownView shown;
    shown.view.setText(u"- a\n- b\n\n1. c\n\n- שלום\n\n"
                       "2024 was quite a year. It rained.\n1000. d"_s);
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
    QCOMPARE(document.findBlockByNumber(4).text(), u"2024 was quite a year. It rained."_s);
    QCOMPARE(lineOf(4).x(), 0.0); // a sentence
    QCOMPARE(lineOf(5).x(), 34.0);

    // The marks are on screen: there is ink in their frames, and none between them and the text.
    const QImage image = shown.view.grab().toImage();
    const auto inkIn = [&](const QRect& rect) {
        int ink = 0;
        for (int y = rect.top(); y <= rect.bottom(); ++y)
            for (int x = rect.left(); x <= rect.right(); ++x)
                ink += qGray(image.pixel(x, y)) < 160 ? 1 : 0;
        return ink;
    };
    const auto frame = [&](int row, int x, int width) {
        return QRect(x, static_cast<int>(topOf(row)), width,
                     static_cast<int>(lineOf(row).height()));
    };
    QVERIFY(inkIn(frame(0, 2, 6)) > 3);
    QCOMPARE(inkIn(frame(0, 10, 10)), 0);
    QVERIFY(inkIn(frame(2, 4, 20)) > 0 || inkIn(frame(2, 8, 16)) > 0);
    QCOMPARE(inkIn(frame(2, 24, 10)), 0);
    QVERIFY(inkIn(frame(3, shown.view.width() - 8, 6)) > 3);
}

void MarkdownContentViewTest::copiesCleanText()
{
    ShownView shown;
    shown.view.setText(u"# A *b*\nc  \nd\n\n- e\n- **f**\n\n2. g\n\n2024 was quite a year. Yes"_s);
    surfaceOf(shown.view).selectAll();
    QTest::keySequence(&surfaceOf(shown.view), QKeySequence::Copy);
    const QString expected = u"A b\n\nc\nd\n\n- e\n- f\n\n2. g\n\n2024 was quite a year. Yes"_s;
    QCOMPARE(QGuiApplication::clipboard()->text(), expected);
    select(shown.view, 2, 9); // "b", "c", "d", and into the list
    QCOMPARE(shown.view.selectedText(), u"b\n\nc\nd\n\n- e"_s);
    const QString word = u"x"_s.repeated(6000);
    shown.view.setText(word + u"\n\ny"_s);
    const auto all = [&shown] {
        surfaceOf(shown.view).selectAll();
        return shown.view.selectedText();
    };
    QTRY_COMPARE(all(), word + u"\n\ny"_s); // once it is all there
}

void MarkdownContentViewTest::keepsSelectionWhileStreaming()
{
    ShownView shown;
    shown.view.setText(u"\nFirst block.\n\nSecond blo"_s);
    select(shown.view, 6, 19);
    QCOMPARE(shown.view.selectedText(), u"block.\n\nSecond"_s);
    shown.view.appendText(u"ck, **open"_s);
    shown.view.appendText(u"** and closed\n\nThird."_s);
    QCOMPARE(shown.view.selectedText(), u"block.\n\nSecond"_s);
    shown.view.setText(u"First block.\n\nSecond block, **open** and closed"_s);
    QCOMPARE(shown.view.selectedText(), u"block.\n\nSecond"_s);

    // One that ends where the text ends does not grow with it.
    surfaceOf(shown.view).selectAll();
    const QString all = shown.view.selectedText();
    shown.view.appendText(u" more.\n\nLast."_s);
    QCOMPARE(shown.view.selectedText(), all);
}

void MarkdownContentViewTest::keepsSelectionOverSizes()
{
    ShownView shown;
    shown.view.setText(everyKind);
    select(shown.view, 3, 40);
    const QString selected = shown.view.selectedText();
    shown.view.setFontSize(19);
    QCOMPARE(shown.view.selectedText(), selected);
    shown.view.setTextColor(Qt::red);
    QCOMPARE(shown.view.selectedText(), selected);
    QCOMPARE(shown.view.document().defaultFont().pixelSize(), 19);
}

class UrlRecorder : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void open(const QUrl& url) { urls.append(url.toString()); }

public:
    QStringList urls;
};

void MarkdownContentViewTest::opensOnlySomeLinks()
{
    UrlRecorder recorder;
    for (const QString& scheme : {u"http"_s, u"https"_s, u"mailto"_s, u"file"_s, u"javascript"_s})
        QDesktopServices::setUrlHandler(scheme, &recorder, "open");
    ShownView shown;
    shown.view.setText(
        u"[aaaa](https://b.c/)\n\n[aaaa](file:///etc/passwd)\n\n[aaaa](javascript:x)\n\n"
        "[aaaa](mailto:x@y.z)\n\n[aaaa](relative)\n\n![aaaa](http://b.c/d.png)"_s);
    for (int block = 0; block < 6; ++block) {
        const QRect rect = shown.view.blockRect(block);
        QTest::mouseClick(surfaceOf(shown.view).viewport(), Qt::LeftButton, {},
                          rect.topLeft() + QPoint(8, rect.height() / 2));
    }
    QCOMPARE(recorder.urls, (QStringList{u"https://b.c/"_s, u"mailto:x@y.z"_s}));
    // By keyboard: Tab goes to the link, Return follows it.
    surfaceOf(shown.view).setFocus();
    QTest::keyClick(&surfaceOf(shown.view), Qt::Key_Tab);
    QTest::keyClick(&surfaceOf(shown.view), Qt::Key_Return);
    QCOMPARE(recorder.urls.size(), 3);
    for (const QString& scheme : {u"http"_s, u"https"_s, u"mailto"_s, u"file"_s, u"javascript"_s})
        QDesktopServices::unsetUrlHandler(scheme);
}

void MarkdownContentViewTest::highlightsBehindTheText()
{
    ShownView shown;
    shown.view.setTextColor(Qt::black);
    shown.view.setText(u"\u0130 \U0001F469\u200D\U0001F467 e\u0301 **th**e the\n\n2. the"_s);
    QVERIFY(QTest::qWaitForWindowExposed(shown.view.window()));
    const auto yellowColumns = [&](int block) {
        const QRect rect = shown.view.blockRect(block);
        const QImage image = shown.view.grab(rect).toImage();
        QList<int> starts;
        bool within = false;
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, 1);
            const bool yellow = color.red() > 200 && color.blue() < color.red() - 40;
            if (yellow && !within)
                starts.append(x);
            within = yellow;
        }
        return starts;
    };
    QVERIFY(yellowColumns(0).isEmpty());
    shown.view.setHighlightText(u"THE"_s);
    const QTextBlock row = shown.view.document().firstBlock();
    const QTextLine line = row.layout()->lineAt(0);
    const auto x = [&](qsizetype position) {
        return static_cast<int>(std::lround(line.cursorToX(static_cast<int>(position))));
    };
    const QList<int> columns = yellowColumns(0);
    QCOMPARE(columns.size(), 2);
    QVERIFY(std::abs(columns[0] - x(row.text().indexOf(u"the"))) <= 1);
    QVERIFY(std::abs(columns[1] - x(row.text().lastIndexOf(u"the"))) <= 1);
    QCOMPARE(yellowColumns(1).size(), 1);
    shown.view.setHighlightText({});
    QVERIFY(yellowColumns(0).isEmpty());
}

void MarkdownContentViewTest::writesLongPagesBitByBit()
{
    const QString page =
        (u"Some words of a paragraph that goes on for a while. "_s.repeated(20) + u"\n\n"_s)
            .repeated(2000);
    ShownView shown;
    shown.view.setText(page);
    const int atFirst = shown.view.document().blockCount();
    QVERIFY(atFirst < 2000);
    QTRY_COMPARE(shown.view.document().blockCount(), 2000);
    shown.view.setFontSize(19);
    QVERIFY(shown.view.document().blockCount() < 2000);
    QVERIFY(!shown.view.blockRect(1999).isNull()); // asked for, it is there
    QVERIFY(shown.view.blockRect(2000).isNull());
    QCOMPARE(described(shown.view.document()).size(), 2000);
}

void MarkdownContentViewTest::endsWithHostileText_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("one word") << u"x"_s.repeated(1000000);
    QTest::newRow("one line") << u"word "_s.repeated(200000);
    QTest::newRow("list without end") << u"- a\n"_s.repeated(100000);
    QTest::newRow("combining marks") << u"a"_s + u"\u0301"_s.repeated(20000);
    QTest::newRow("nested markup") << u"*a **b "_s.repeated(20000);
    QTest::newRow("brackets") << u"["_s.repeated(50000);
    QTest::newRow("directions") << u"\u202Ea\u2066b\u2067"_s.repeated(5000);
    QTest::newRow("number without end") << u"1"_s.repeated(500000) + u". a"_s;
}

void MarkdownContentViewTest::endsWithHostileText()
{
    QFETCH(const QString, text);
    ShownView shown;
    shown.view.setText(text);
    shown.view.grab(QRect(0, 0, 500, 600));
    QVERIFY(shown.view.height() > 0);
    shown.view.appendText(u" more"_s);
}

} // namespace varno

VARNO_TEST(QApplication, varno::MarkdownContentViewTest)
#include "MarkdownContentViewTest.moc"
