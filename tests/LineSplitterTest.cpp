#include "providers/LineSplitter.h"

#include <QByteArrayList>
#include <QRandomGenerator>
#include <QTest>

using namespace varno;

namespace {

QByteArrayList split(const QByteArray& bytes, const std::function<qsizetype()>& nextLength)
{
    LineSplitter splitter;
    QByteArrayList lines;
    const auto onLine = [&](std::string_view line) {
        lines.append(QByteArray(line.data(), static_cast<qsizetype>(line.size())));
        return true;
    };
    for (qsizetype start = 0; start < bytes.size();) {
        const qsizetype length = std::min(nextLength(), bytes.size() - start);
        splitter.feed({bytes.data() + start, static_cast<std::size_t>(length)}, onLine);
        start += length;
    }
    splitter.finish(onLine);
    return lines;
}

} // namespace

class LineSplitterTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void linesDoNotDependOnTheCut_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArrayList>("lines");
        using Lines = QByteArrayList;
        QTest::newRow("LF") << QByteArray("a\nb\n\nc\n") << Lines{"a", "b", "", "c"};
        QTest::newRow("CR LF") << QByteArray("a\r\nb\r\n\r\nc\r\n") << Lines{"a", "b", "", "c"};
        QTest::newRow("CR") << QByteArray("a\rb\r\rc\r") << Lines{"a", "b", "", "c"};
        QTest::newRow("mixed") << QByteArray("a\n\rb\r\n\nc\r\r\nd")
                               << Lines{"a", "", "b", "", "c", "", "d"};
        QTest::newRow("no end") << QByteArray("data: x") << Lines{"data: x"};
        QTest::newRow("nothing") << QByteArray() << Lines{};
        QTest::newRow("end alone") << QByteArray("\n") << Lines{""};
        QTest::newRow("other separators") << QByteArray("a\x0b b\x0c c\xc2\x85 d\xe2\x80\xa8 e\n")
                                          << Lines{"a\x0b b\x0c c\xc2\x85 d\xe2\x80\xa8 e"};
        QTest::newRow("NUL") << QByteArray("a\0b\nc", 5) << Lines{QByteArray("a\0b", 3), "c"};
        QTest::newRow("one byte-order mark") << QByteArray("\xEF\xBB\xBF\xEF\xBB\xBF"
                                                           "a\n\xEF\xBB\xBF"
                                                           "b\n")
                                             << Lines{"\xEF\xBB\xBF"
                                                      "a",
                                                      "\xEF\xBB\xBF"
                                                      "b"};
    }
    void linesDoNotDependOnTheCut()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QByteArrayList, lines);
        for (qsizetype length = 1; length <= bytes.size() + 1; ++length)
            QCOMPARE(split(bytes, [&] { return length; }), lines);
        QRandomGenerator random(1);
        for (int round = 0; round < 20; ++round)
            QCOMPARE(split(bytes, [&] { return random.bounded(1, 5); }), lines);
    }

    void endlessLineIsDroppedAndTheNextOneIsNot()
    {
        LineSplitter splitter;
        QByteArrayList lines;
        const auto onLine = [&](std::string_view line) {
            lines.append(QByteArray(line.data(), static_cast<qsizetype>(line.size())));
            return true;
        };
        const std::string block(1U << 20U, 'x');
        splitter.feed("before\ndata: ", onLine);
        for (int i = 0; i < 100; ++i)
            splitter.feed(block, onLine);
        splitter.feed("\nafter\n", onLine);
        const std::string whole(LineSplitter::longestLine + 1, 'x');
        splitter.feed(whole + "\nend", onLine);
        splitter.finish(onLine);
        QCOMPARE(lines, QByteArrayList({"before", "after", "end"}));
    }

    void stopsWhenTold()
    {
        LineSplitter splitter;
        int lines = 0;
        QVERIFY(!splitter.feed("a\nb\nc\n", [&](std::string_view) { return ++lines < 2; }));
        QCOMPARE(lines, 2);
    }
};

VARNO_TEST(QCoreApplication, LineSplitterTest)
#include "LineSplitterTest.moc"
