#include "providers/LineSplitter.h"

#include "tests/Test.h"

#include <QByteArrayList>

namespace {

/// The lines of what is cut into parts of that length.
QByteArrayList split(const QByteArray& bytes, qsizetype length)
{
    LineSplitter splitter;
    QByteArrayList lines;
    const auto onLine = [&](std::string_view line) {
        lines.append(QByteArray(line.data(), static_cast<qsizetype>(line.size())));
        return true;
    };
    for (qsizetype start = 0; start < bytes.size(); start += length)
        splitter.feed(bytes.mid(start, length).toStdString(), onLine);
    splitter.finish(onLine);
    return lines;
}

} // namespace

class LineSplitterTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void linesDoNotDependOnTheCut()
    {
        for (const auto& [bytes, lines] : Rows<QByteArray, QByteArrayList>{
                 {"a\nb\n\nc\n", {"a", "b", "", "c"}},
                 {"a\r\nb\r\n\r\nc\r\n", {"a", "b", "", "c"}},
                 {"a\rb\r\rc\r", {"a", "b", "", "c"}},
                 {"a\n\rb\r\n\nc\r\r\nd", {"a", "", "b", "", "c", "", "d"}},
                 {"", {}},
                 {"\n", {""}},
                 {"a\x0b b\x0c c\xc2\x85 d\xe2\x80\xa8 e\n",
                  {"a\x0b b\x0c c\xc2\x85 d\xe2\x80\xa8 e"}},
                 {QByteArray("a\0b\nc", 5), {QByteArray("a\0b", 3), "c"}},
                 {"\xEF\xBB\xBF\xEF\xBB\xBF!\n\xEF\xBB\xBF!\n",
                  {"\xEF\xBB\xBF!", "\xEF\xBB\xBF!"}}}) {
            const InRow row(bytes);
            for (qsizetype length = 1; length <= bytes.size() + 1; ++length)
                QCOMPARE(split(bytes, length), lines);
        }
    }

    void endlessLineIsDroppedAndTheNextOneIsNot()
    {
        constexpr qsizetype longest = LineSplitter::longestLine;
        const QByteArray text = "before\n" + QByteArray(longest, 'x') + "\n" +
                                QByteArray(longest + 1, 'x') + "\nafter\n" +
                                QByteArray(3 * longest, 'x') + "\nend";
        for (const qsizetype length : {qsizetype(1) << 20, qsizetype(100) << 20}) {
            const QByteArrayList lines = split(text, length);
            QCOMPARE(lines.size(), 4);
            QCOMPARE(lines[1].size(), longest);
            QCOMPARE(lines[2] + lines[3], "afterend");
        }
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
