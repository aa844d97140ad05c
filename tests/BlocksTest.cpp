#include "reader/text/Blocks.h"

#include "reader/text/Highlights.h"
#include "reader/text/RowReader.h"
#include "tests/Test.h"

class BlocksTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void splitsIntoBlocks()
    {
        for (const auto& [text, expected] : Rows<QString, QStringList>{
                 {u"\n \n\n\t\n"_s, {}},
                 {u"## Title\nBody line\n\n\nNext"_s, {u"## Title"_s, u"Body line"_s, u"Next"_s}},
                 {u"# A\n## B\n### C"_s, {u"# A"_s, u"## B"_s, u"### C"_s}},
                 {u"a\n# B\nc"_s, {u"a\n# B\nc"_s}},
                 {u"a\n \nb"_s, {u"a\n \nb"_s}},
                 {u"\u3000a\u2003\n\n\u00A0\n\nb"_s, {u"a"_s, u"b"_s}},
                 {u"#### A\nb"_s, {u"#### A\nb"_s}}}) {
            const InRow row(text);
            QCOMPARE(blocks(text), expected);

            // The reader of rows finds the same blocks.
            QList<BlockKind> kinds;
            for (const QString& block : expected)
                kinds.append(blockKind(block));
            QList<BlockKind> readKinds;
            RowReader reader(text);
            while (const auto next = reader.next())
                if (next->start.block == readKinds.size())
                    readKinds.append(next->start.kind);
            QCOMPARE(readKinds, kinds);
        }
    }

    void tellsKinds()
    {
        using enum BlockKind;
        for (const auto& [kind, texts] : Rows<BlockKind, QStringList>{
                 {boldHeader, {u"**Bold**"_s, u"*****"_s}},
                 {heading1, {u"# a"_s}},
                 {heading2, {u"## a"_s}},
                 {heading3, {u"### a"_s}},
                 {bulletList, {u"  - item"_s, u"* item"_s}},
                 {numberedList,
                  {u"1. a"_s, u"2024 was a year. It rained."_s, u"\u0663. a"_s, u"\u4E09. a"_s,
                   u"\u00BD of it. a"_s, u"\U0001D7D8. a"_s}},
                 {paragraph,
                  {u"****"_s, u"**a**b**"_s, u"**a\nb**"_s, u"#### Deep"_s, u"#a"_s,
                   u"+ item\n- item"_s, u"1) first"_s, u"1 a\n2. b"_s, u"a. b"_s}}}) {
            for (const QString& text : texts) {
                const InRow row(text);
                QCOMPARE(blockKind(text), kind);
            }
        }
    }

    void readsListItems()
    {
        for (const auto& [text, expected] : Rows<QString, QStringList>{
                 {u"- a\ncontinued\n\t* b \n+ c\n- d"_s, {u"•|a"_s, u"•|b"_s, u"•|d"_s}},
                 {u"1. a\n1. b\nstray\n 7. c. d"_s, {u"1.|a"_s, u"1.|b"_s, u"7.|c. d"_s}},
                 {u"2024 was a year. It rained.\n1000. a\n12345. b\n123456. c"_s,
                  {u"|2024 was a year. It rained."_s, u"1000.|a"_s, u"12345.|b"_s,
                   u"|123456. c"_s}},
                 {u"- - a"_s, {u"•|- a"_s}}}) {
            const InRow row(text);
            QStringList rows;
            RowReader reader(text);
            while (const auto next = reader.next())
                rows.append(next->mark + u'|' + next->text.toString());
            QCOMPARE(rows, expected);
        }
    }

    void cutsLongLines()
    {
        for (const auto& [line, joint] :
             Rows<QString, QString>{{u"word "_s.repeated(20000).trimmed(), u" "_s},
                                    {u"a"_s + u"\u0301"_s.repeated(20000), u""_s},
                                    {u"\U0001F469\u200D\U0001F467"_s.repeated(5000), u""_s},
                                    {u"\U0001F600 "_s.repeated(5000).trimmed(), u" "_s}}) {
            const InRow row(line.first(5));
            QStringList rows;
            RowReader reader(line);
            while (const auto next = reader.next()) {
                QVERIFY(next->text.size() < 10000);
                QVERIFY(next->text.count(QChar(0xD83D)) <= 64);
                QVERIFY(!next->text.front().isLowSurrogate());
                QVERIFY(next->text.front() != QChar(0x200D));
                rows.append(next->text.toString());

                // Reading on at any row finds the rest as it is.
                RowReader again(line, next->start);
                QCOMPARE(again.next()->text, next->text);
            }
            QVERIFY(rows.size() > 1);
            QCOMPARE(rows.join(joint), line);
        }
    }

    void highlights()
    {
        for (const auto& [text, needle, expected] : Rows<QString, QString, QList<int>>{
                 {u"text"_s, u""_s, {}},
                 {u"The theme"_s, u"the"_s, {0, 3, 4, 7}},
                 {u"aaa"_s, u"aa"_s, {0, 2}},
                 {u"café cafe"_s, u"cafe"_s, {5, 9}},
                 {u"\u0130\u0130 ab \u0130ab"_s, u"AB"_s, {3, 5, 7, 9}},
                 {u"x\u0130y"_s, u"\u0130"_s, {1, 2}},
                 {u"xe\u0301y"_s, u"e"_s, {1, 3}},
                 {u"a\U0001F469\u200D\U0001F467b"_s, u"\U0001F467"_s, {1, 6}}}) {
            const InRow row(text, needle);
            QList<int> found;
            for (const TextRange& range : highlightRanges(text, needle))
                found.append({int(range.begin), int(range.end)});
            QCOMPARE(found, expected);
        }
    }
};

VARNO_TEST(QCoreApplication, BlocksTest)
#include "BlocksTest.moc"
