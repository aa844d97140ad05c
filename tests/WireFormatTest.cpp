#include "providers/WireFormat.h"

#include "core/JsonArray.h"
#include "core/JsonReader.h"
#include "providers/EntryTagFilter.h"
#include "providers/LineSplitter.h"
#include "tests/Test.h"

#include <QByteArrayList>

namespace {

using Text = std::optional<QString>;

/// Reads JSON with single quotes, for the eye.
void readsEach(const Rows<QByteArray, Text>& rows, Text (*read)(json::Parser&, std::string_view))
{
    json::Parser parser;
    for (auto [payload, text] : rows) {
        const InRow row(payload);
        payload.replace('\'', '"');
        QCOMPARE(read(parser, {payload.data(), static_cast<std::size_t>(payload.size())}), text);
    }
}

/// The lines of what is cut into parts of that length.
QByteArrayList linesOf(const QByteArray& bytes, std::size_t length)
{
    LineSplitter splitter;
    QByteArrayList lines;
    const auto onLine = [&](std::string_view line) {
        lines.append(QByteArray(line.data(), static_cast<qsizetype>(line.size())));
        return true;
    };
    const std::string_view whole(bytes.data(), static_cast<std::size_t>(bytes.size()));
    for (std::size_t start = 0; start < whole.size(); start += length)
        splitter.feed(whole.substr(start, length), onLine);
    splitter.finish(onLine);
    return lines;
}

} // namespace

class WireFormatTest : public QObject {
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
            for (std::size_t length = 1; length <= 20; ++length)
                QCOMPARE(linesOf(bytes, length), lines);
        }
    }

    void endlessLineIsDroppedAndTheNextOneIsNot()
    {
        constexpr qsizetype longest = LineSplitter::longestLine;
        const QByteArray text = "before\n" + QByteArray(longest, 'x') + "\n" +
                                QByteArray(longest + 1, 'x') + "\nafter\n" +
                                QByteArray(3 * longest, 'x') + "\nend";
        for (const std::size_t length : {1U << 20U, 100U << 20U}) {
            const QByteArrayList lines = linesOf(text, length);
            QCOMPARE(lines.size(), 4);
            QCOMPARE(lines[1].size(), longest);
            QCOMPARE(lines[2] + lines[3], "afterend");
        }
    }

    void linesStopWhenTold()
    {
        LineSplitter splitter;
        int lines = 0;
        QVERIFY(!splitter.feed("a\nb\nc\n", [&](std::string_view) { return ++lines < 2; }));
        QCOMPARE(lines, 2);
    }

    void payloads()
    {
        QCOMPARE(eventPayload("data: {}"), "{}");
        QCOMPARE(eventPayload("data: "), "");
        for (const std::string_view line : {"", "data:{}", " data: {}"})
            QVERIFY(!eventPayload(line));
    }

    void claudeEvents()
    {
        const auto event = [](const char* members) {
            return QByteArray("{'type':'content_block_delta',") + members + '}';
        };
        readsEach(
            {{event("'index':0,'delta':{'type':'text_delta','text':'Rome'}   "), u"Rome"_s},
             {event("'delta':{'type':'x','text':''}"), u""_s},
             {event("'delta':{'type':'x','text':'\\u00e9\\ud83c\\udfdb\\u0000\\n\xEF\xBB\xBF'}"),
              u"é\U0001F3DB"_s + QChar(u'\0') + u"\n\uFEFF"_s},
             {"\xEF\xBB\xBF" + event("'at':[-99999999999999999999,1e999],"
                                     "'delta':{'type':'x','text':'a'}"),
              u"a"_s},
             {event("'index':null,'delta':{'type':'x','text':null}"), {}},
             {event("'delta':{'text':'a'}"), {}},
             {event("'delta':{'type':'x','text':1}"), {}},
             {event("'index':'0','delta':{'type':'x','text':'a'}"), {}},
             {event("'index':0.5,'delta':{'type':'x','text':'a'}"), {}},
             {event("'index':1e19,'delta':{'type':'x','text':'a'}"), {}},
             {event("'index':-1.0,'delta':{'type':'x','text':'a'}"), u"a"_s},
             {"{'type':'content_block_start','delta':{'type':'x','text':'a'}}", {}},
             {"[DONE]", {}},
             {"['text']", {}},
             {"", {}},
             {event("'other':nope,'delta':{'type':'x','text':'a'}"), {}}},
            &claudeEventText);
    }

    void geminiEvents()
    {
        const auto parts = [](const char* list) {
            return QByteArray("{'candidates':[{'content':{'parts':[") + list + "]}}]}";
        };
        readsEach(
            {{"{'candidates':[{'content':{'parts':[{'text':'Rome'}],'role':'model'}}]}", u"Rome"_s},
             {parts("{'text':''}"), u""_s},
             {parts("{'text':'a'},{'text':'b'}"), u"a"_s},
             {"{'candidates':[{'content':{'parts':[{'text':'a'}]}},"
              "{'content':{'parts':[{'text':'b'}]}}]}",
              u"a"_s},
             {parts("{'functionCall':{}},{'text':'b'}"), {}},
             {parts(""), {}},
             {"{'usageMetadata':{}}", {}},
             {"{'candidates':[{'content':{'role':'model'},'finishReason':'STOP'}]}", {}},
             {"{'candidates':[{'finishReason':'SAFETY'}]}", {}},
             {parts("{'text':'a'},{'text':1}"), {}},
             {parts("{'text':'a'},1"), {}},
             {"{'candidates':[{'content':{'parts':[{'text':'a'}]}},{'content':{'parts':{}}}]}", {}},
             {"{'candidates':{}}", {}}},
            &geminiEventText);
    }

    void wholeReplies()
    {
        readsEach({{"{'content':[{'type':'tool','name':'x'},{'type':'text','text':'[1]'},"
                    "{'type':'text','text':'[2]'}]}",
                    u"[1]"_s},
                   {"{'content':[{'type':'text'},{'type':'text','text':'[2]'}]}", u""_s},
                   {"{'content':[]}", u""_s},
                   {"{'content':[{'type':'text','text':'[1]'},{'text':'x'}]}", {}},
                   {"{'content':[{'type':'text','text':'[1]'},1]}", {}},
                   {"{'type':'message'}", {}},
                   {"<html>", {}}},
                  &claudeReplyText);
        readsEach({{"{'candidates':[{'content':{'parts':[{'text':'[1]'}]}}]}", u"[1]"_s},
                   {"{}", u""_s},
                   {"{'candidates':1}", {}}},
                  &geminiReplyText);
    }

    void geminiErrors()
    {
        readsEach(
            {{"{\n 'error': {\n 'code': 400,\n 'message': 'No.',\n 'status': 'X'}}", u"No."_s},
             {"{'error':{'message':'No.'}}", u"No."_s},
             {"{'error':{'code':400}}", {}},
             {"{'error':{'code':'400','message':'No.'}}", {}},
             {"{'error':{'status':1,'message':'No.'}}", {}},
             {"<html>Bad Request</html>", {}}},
            &geminiErrorMessage);
    }

    void entryTag()
    {
        for (const auto& [answer, expected] :
             Rows<QString, QString>{{u"<entry>Rome</entry>"_s, u"Rome</entry>"_s},
                                    {u"Let me look <ent <<entry>Rome"_s, u"Rome"_s},
                                    {u"<entry>a <entry> b"_s, u"a <entry> b"_s},
                                    {u"Rome <entry"_s, u"Rome <entry"_s},
                                    {u"<Entry>Rome"_s, u"<Entry>Rome"_s},
                                    {u"<entry>"_s, u""_s}}) {
            for (int length = 1; length <= answer.size() + 1; ++length) {
                const InRow row(answer, length);
                EntryTagFilter filter;
                QString entry;
                for (qsizetype start = 0; start < answer.size(); start += length)
                    entry += filter.filter(answer.mid(start, length)).value_or(QString());
                entry += filter.rest().value_or(QString());
                QCOMPARE(entry, expected);
            }
        }
    }

    void nothingPassesBeforeTheTag()
    {
        EntryTagFilter filter;
        QVERIFY(!filter.rest());
        QVERIFY(!filter.filter(u"I'll search first."_s));
        QVERIFY(!filter.filter(u"<en"_s));
        QVERIFY(!filter.filter(u"try>"_s));
        QCOMPARE(filter.filter(u""_s), u""_s);
        QCOMPARE(filter.filter(u" a city"_s), u" a city"_s);
        QVERIFY(!filter.rest());
    }

    void arrays()
    {
        using Array = std::optional<QStringList>;
        const auto quoted = [](QString text) { return text.replace(u'\'', u'"'); };
        for (const auto& [text, list] : Rows<QString, Array>{
                 {u"Here it is:\n```json\n['A', 'B']\n```\nEnjoy!"_s, {{u"A"_s, u"B"_s}}},
                 {u" [ ] "_s, QStringList()},
                 {u"['A [1]', ']', '\\u00c9lan']"_s, {{u"A [1]"_s, u"]"_s, u"Élan"_s}}},
                 {u"['A', 2]"_s, {}},
                 {u"[['A']]"_s, {}},
                 {u"['A'] and ['B']"_s, {}},
                 {u"none"_s, {}},
                 {u"['A'"_s, {}},
                 {u"'A']"_s, {}}}) {
            const InRow row(text);
            QCOMPARE(parseJSONArray(quoted(text)), list);
        }
    }
};

VARNO_TEST(QCoreApplication, WireFormatTest)
#include "WireFormatTest.moc"
