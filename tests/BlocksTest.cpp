#include "reader/text/Blocks.h"

#include "reader/text/Highlights.h"
#include "reader/text/RowReader.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace varno {

class BlocksTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void splitsIntoBlocks_data();
    void splitsIntoBlocks();
    void tellsKinds_data();
    void tellsKinds();
    void readsListItems();
    void cutsLongLines_data();
    void cutsLongLines();
    void highlights_data();
    void highlights();
};

void BlocksTest::splitsIntoBlocks_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("empty") << u""_s << QStringList();
    QTest::newRow("blank lines") << u"\n \n\n\t\n"_s << QStringList();
    QTest::newRow("heading and body") << u"## Title\nBody line\n\nNext"_s
                                      << QStringList{u"## Title"_s, u"Body line"_s, u"Next"_s};
    QTest::newRow("run of headings")
        << u"# A\n## B\n### C"_s << QStringList{u"# A"_s, u"## B"_s, u"### C"_s};
    QTest::newRow("heading alone") << u"## B"_s << QStringList{u"## B"_s};
    QTest::newRow("heading not on the first line") << u"a\n# B\nc"_s << QStringList{u"a\n# B\nc"_s};
    QTest::newRow("blank line that is not empty") << u"a\n \nb"_s << QStringList{u"a\n \nb"_s};
    QTest::newRow("three newlines") << u"a\n\n\nb"_s << QStringList{u"a"_s, u"b"_s};
    QTest::newRow("blanks of any kind")
        << u"\u3000a\u2003\n\n\u00A0\n\nb"_s << QStringList{u"a"_s, u"b"_s};
    QTest::newRow("deep heading") << u"#### A\nb"_s << QStringList{u"#### A\nb"_s};
}

void BlocksTest::splitsIntoBlocks()
{
    QFETCH(const QString, text);
    QFETCH(const QStringList, expected);
    QCOMPARE(blocks(text), expected);

    // The reader of rows finds the same blocks.
    QStringList kinds;
    QStringList readKinds;
    for (const QString& block : expected)
        kinds.append(QString::number(static_cast<int>(blockKind(block))));
    RowReader reader(text);
    while (const auto row = reader.next()) {
        if (row->start.block == readKinds.size())
            readKinds.append(QString::number(static_cast<int>(row->start.kind)));
    }
    QCOMPARE(readKinds, kinds);
}

void BlocksTest::tellsKinds_data()
{
    QTest::addColumn<QString>("block");
    QTest::addColumn<BlockKind>("expected");

    using enum BlockKind;
    QTest::newRow("bold header") << u"**Bold**"_s << boldHeader;
    QTest::newRow("bold header of stars") << u"*****"_s << boldHeader;
    QTest::newRow("only marks") << u"****"_s << paragraph;
    QTest::newRow("two bold words") << u"**a**b**"_s << paragraph;
    QTest::newRow("bold over two lines") << u"**a\nb**"_s << paragraph;
    QTest::newRow("heading 1") << u"# a"_s << heading1;
    QTest::newRow("heading 2") << u"## a"_s << heading2;
    QTest::newRow("heading 3") << u"### a"_s << heading3;
    QTest::newRow("heading 4") << u"#### Deep"_s << paragraph;
    QTest::newRow("no blank after the mark") << u"#a"_s << paragraph;
    QTest::newRow("indented item") << u"  - item"_s << bulletList;
    QTest::newRow("star") << u"* item"_s << bulletList;
    QTest::newRow("other bullets") << u"+ item\n- item"_s << paragraph;
    QTest::newRow("number") << u"1. a"_s << numberedList;
    QTest::newRow("bracket") << u"1) first"_s << paragraph;
    QTest::newRow("year") << u"2024 was a year. It rained."_s << numberedList;
    QTest::newRow("Arabic") << u"\u0663. a"_s << numberedList;
    QTest::newRow("Chinese") << u"\u4E09. a"_s << numberedList;
    QTest::newRow("fraction") << u"\u00BD of it. a"_s << numberedList;
    QTest::newRow("outside the first plane") << u"\U0001D7D8. a"_s << numberedList;
    QTest::newRow("point on the second line") << u"1 a\n2. b"_s << paragraph;
    QTest::newRow("letter") << u"a. b"_s << paragraph;
}

void BlocksTest::tellsKinds()
{
    QFETCH(const QString, block);
    QFETCH(const BlockKind, expected);
    QCOMPARE(blockKind(block), expected);
    QCOMPARE(isBoldHeader(block), expected == BlockKind::boldHeader);
}

void BlocksTest::readsListItems()
{
    const auto rowsOf = [](QStringView text) {
        QStringList rows;
        RowReader reader(text);
        while (const auto row = reader.next())
            rows.append(row->mark + u'|' + row->text.toString());
        return rows;
    };
    QCOMPARE(rowsOf(u"- a\ncontinued\n\t* b \n+ c\n- d"),
             (QStringList{u"•|a"_s, u"•|b"_s, u"•|d"_s}));
    QCOMPARE(rowsOf(u"1. a\n1. b\nstray\n 7. c. d"),
             (QStringList{u"1.|a"_s, u"1.|b"_s, u"7.|c. d"_s}));
    QCOMPARE(rowsOf(u"2024 was a year. It rained.\n1000. a"),
             (QStringList{u"|2024 was a year. It rained."_s, u"1000.|a"_s}));
    QCOMPARE(rowsOf(u"- - a"), (QStringList{u"•|- a"_s}));
}

void BlocksTest::cutsLongLines_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("joint"); ///< what is lost at a cut

    QTest::newRow("words") << u"word "_s.repeated(20000).trimmed() << u" "_s;
    QTest::newRow("one word") << u"x"_s.repeated(100000) << u""_s;
    QTest::newRow("combining marks") << u"a"_s + u"\u0301"_s.repeated(20000) << u""_s;
    QTest::newRow("families") << u"\U0001F469\u200D\U0001F467"_s.repeated(5000) << u""_s;
    QTest::newRow("pictures") << u"\U0001F600 "_s.repeated(5000).trimmed() << u" "_s;
}

void BlocksTest::cutsLongLines()
{
    QFETCH(const QString, line);
    QFETCH(const QString, joint);
    QStringList rows;
    RowReader reader(line);
    while (const auto row = reader.next()) {
        QVERIFY(row->text.size() < 10000);
        QVERIFY(row->text.count(QChar(0xD83D)) <= 64);
        QVERIFY(!row->text.front().isLowSurrogate());
        QVERIFY(row->text.front() != QChar(0x200D));
        rows.append(row->text.toString());

        // Reading on at any row finds the rest as it is.
        RowReader again(line, row->start);
        QCOMPARE(again.next()->text, row->text);
    }
    QVERIFY(rows.size() > 1);
    QCOMPARE(rows.join(joint), line);
}

void BlocksTest::highlights_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("needle");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("nothing") << u"text"_s << u""_s << QStringList();
    QTest::newRow("case") << u"The theme"_s << u"the"_s << QStringList{u"0 3"_s, u"4 7"_s};
    QTest::newRow("overlap") << u"aaa"_s << u"aa"_s << QStringList{u"0 2"_s};
    QTest::newRow("accents count") << u"café cafe"_s << u"cafe"_s << QStringList{u"5 9"_s};
    QTest::newRow("after a dotted capital")
        << u"\u0130\u0130 ab \u0130ab"_s << u"AB"_s << QStringList{u"3 5"_s, u"7 9"_s};
    QTest::newRow("the dotted capital") << u"x\u0130y"_s << u"\u0130"_s << QStringList{u"1 2"_s};
    QTest::newRow("half of it") << u"x\u0130y"_s << u"i"_s << QStringList{u"1 2"_s};
    QTest::newRow("after combining marks")
        << u"e\u0301\u0302 ab"_s << u"ab"_s << QStringList{u"4 6"_s};
    QTest::newRow("a letter with its mark") << u"xe\u0301y"_s << u"e"_s << QStringList{u"1 3"_s};
    QTest::newRow("half of a flag")
        << u"\U0001F1E9\U0001F1EA"_s << u"\U0001F1E9"_s << QStringList{u"0 4"_s};
    QTest::newRow("one of a family")
        << u"a\U0001F469\u200D\U0001F467b"_s << u"\U0001F467"_s << QStringList{u"1 6"_s};
}

void BlocksTest::highlights()
{
    QFETCH(const QString, text);
    QFETCH(const QString, needle);
    QFETCH(const QStringList, expected);
    QStringList found;
    for (const TextRange& range : highlightRanges(text, needle))
        found.append(u"%1 %2"_s.arg(range.begin).arg(range.end));
    QCOMPARE(found, expected);
}

} // namespace varno

VARNO_TEST(QCoreApplication, varno::BlocksTest)
#include "BlocksTest.moc"
