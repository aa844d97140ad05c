#include "providers/WireFormat.h"

#include "core/JsonArray.h"
#include "core/JsonReader.h"
#include "providers/EntryTagFilter.h"

#include <QProcess>
#include <QTest>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

std::string_view view(const QByteArray& bytes)
{
    return {bytes.data(), static_cast<std::size_t>(bytes.size())};
}

using Text = std::optional<QString>;

/// JSON with single quotes, for the eye.
QByteArray quoted(QByteArray text)
{
    return text.replace('\'', '"');
}

} // namespace

class WireFormatTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void payloads()
    {
        QCOMPARE(eventPayload("data: {}"), "{}");
        QCOMPARE(eventPayload("data: "), "");
        for (const std::string_view line :
             {"", "data:{}", "Data: {}", " data: {}", "event: data: {}", ": data: ", "data"})
            QVERIFY(!eventPayload(line));
    }

    void claudeEvents_data()
    {
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<Text>("text");
        const auto row = [](const char* name, const char* payload, const Text& text) {
            QTest::newRow(name) << quoted(payload) << text;
        };
        row("text",
            "{'type':'content_block_delta','index':0,'delta':{'type':'text_delta','text':'Rome'}   "
            "}",
            u"Rome"_s);
        row("any kind of delta", "{'type':'content_block_delta','delta':{'type':'x','text':'a'}}",
            u"a"_s);
        row("empty text", "{'type':'content_block_delta','delta':{'type':'x','text':''}}", u""_s);
        row("escapes",
            "{'type':'content_block_delta','delta':{'type':'x','text':'"
            "\\u00e9\\ud83c\\udfdb\\u0000\\n'}}",
            u"é\U0001F3DB"_s + QChar(u'\0') + u"\n"_s);
        row("byte-order mark",
            "{'type':'content_block_delta','delta':{'type':'x','text':'\xEF\xBB\xBFx'}}",
            u"\uFEFFx"_s);
        row("byte-order mark in front, and numbers of any size",
            "\xEF\xBB\xBF{'type':'content_block_delta','at':[-99999999999999999999,1e999],"
            "'delta':{'type':'x','text':'a'}}",
            u"a"_s);
        row("null members",
            "{'type':'content_block_delta','index':null,'delta':{'type':'x','text':null}}", {});
        row("delta without type", "{'type':'content_block_delta','delta':{'text':'a'}}", {});
        row("delta is null", "{'type':'content_block_delta','delta':null}", {});
        row("text is a number", "{'type':'content_block_delta','delta':{'type':'x','text':1}}", {});
        row("index is a text",
            "{'type':'content_block_delta','index':'0','delta':{'type':'x','text':'a'}}", {});
        row("index is a fraction",
            "{'type':'content_block_delta','index':0.5,'delta':{'type':'x','text':'a'}}", {});
        row("index is whole",
            "{'type':'content_block_delta','index':1.0,'delta':{'type':'x','text':'a'}}", u"a"_s);
        row("another event", "{'type':'message_delta','delta':{'stop_reason':'end_turn'}}", {});
        row("another event with text",
            "{'type':'content_block_start','delta':{'type':'x','text':'a'}}", {});
        row("no type", "{'delta':{'type':'x','text':'a'}}", {});
        row("error", "{'type':'error','error':{'type':'overloaded_error','message':'Overloaded'}}",
            {});
        row("end mark", "[DONE]", {});
        row("array", "[]", {});
        row("nothing", "", {});
        row("cut off", "{'type':'content_block_delta','delta':{'type':'x','text':'a", {});
        row("trailing text", "{'type':'content_block_delta','delta':{'type':'x','text':'a'}} x",
            {});
        row("broken elsewhere",
            "{'type':'content_block_delta','other':nope,'delta':{'type':'x','text':'a'}}", {});
        row("bad number elsewhere",
            "{'type':'content_block_delta','other':01,'delta':{'type':'x','text':'a'}}", {});
        row("invalid UTF-8", "{'type':'content_block_delta','delta':{'type':'x','text':'\xC3('}}",
            {});
        row("lone surrogate",
            "{'type':'content_block_delta','delta':{'type':'x','text':'\\ud800'}}", {});
    }
    void claudeEvents()
    {
        QFETCH(QByteArray, payload);
        json::Parser parser;
        QTEST(claudeEventText(parser, view(payload)), "text");
    }

    void geminiEvents_data()
    {
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<Text>("text");
        const auto row = [](const char* name, const char* payload, const Text& text) {
            QTest::newRow(name) << quoted(payload) << text;
        };
        row("text",
            "{'candidates':[{'content':{'parts':[{'text':'Rome'}],'role':'model'},'index':0}]}",
            u"Rome"_s);
        row("empty text", "{'candidates':[{'content':{'parts':[{'text':''}]}}]}", u""_s);
        row("first part alone",
            "{'candidates':[{'content':{'parts':[{'text':'a'},{'text':'b'}]}}]}", u"a"_s);
        row("first candidate alone",
            "{'candidates':[{'content':{'parts':[{'text':'a'}]}},{'content':{'parts':[{'text':'b'}]"
            "}}]}",
            u"a"_s);
        row("text in the second part",
            "{'candidates':[{'content':{'parts':[{'functionCall':{}},{'text':'b'}]}}]}", {});
        row("no candidates", "{'usageMetadata':{}}", {});
        row("empty lists", "{'candidates':[]}", {});
        row("no parts", "{'candidates':[{'content':{'role':'model'},'finishReason':'STOP'}]}", {});
        row("no content", "{'candidates':[{'finishReason':'SAFETY'}]}", {});
        row("nulls", "{'candidates':[{'content':{'parts':[{'text':null}]}}]}", {});
        row("a later part is malformed",
            "{'candidates':[{'content':{'parts':[{'text':'a'},{'text':1}]}}]}", {});
        row("a later candidate is malformed",
            "{'candidates':[{'content':{'parts':[{'text':'a'}]}},{'content':{'parts':{}}}]}", {});
        row("candidates is an object", "{'candidates':{}}", {});
        row("error", "{'error':{'code':503,'message':'overloaded','status':'UNAVAILABLE'}}", {});
    }
    void geminiEvents()
    {
        QFETCH(QByteArray, payload);
        json::Parser parser;
        QTEST(geminiEventText(parser, view(payload)), "text");
    }

    void wholeReplies_data()
    {
        QTest::addColumn<bool>("gemini");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<Text>("text");
        const auto row = [](const char* name, bool gemini, const char* body, const Text& text) {
            QTest::newRow(name) << gemini << quoted(body) << text;
        };
        row("claude: first text block", false,
            "{'content':[{'type':'server_tool_use','name':'web_search'},{'type':'text','text':'[1]'"
            "},{'type':'text','text':'[2]'}]}",
            u"[1]"_s);
        row("claude: first text block has no text", false,
            "{'content':[{'type':'text'},{'type':'text','text':'[2]'}]}", u""_s);
        row("claude: no text block", false, "{'content':[]}", u""_s);
        row("claude: a later block is malformed", false,
            "{'content':[{'type':'text','text':'[1]'},{'text':'x'}]}", {});
        row("claude: no content", false, "{'type':'message'}", {});
        row("claude: no JSON", false, "<html>", {});
        row("gemini: text", true, "{'candidates':[{'content':{'parts':[{'text':'[1]'}]}}]}",
            u"[1]"_s);
        row("gemini: nothing", true, "{}", u""_s);
        row("gemini: malformed", true, "{'candidates':1}", {});
    }
    void wholeReplies()
    {
        QFETCH(bool, gemini);
        QFETCH(QByteArray, body);
        json::Parser parser;
        QTEST(gemini ? geminiReplyText(parser, view(body)) : claudeReplyText(parser, view(body)),
              "text");
    }

    void geminiErrors_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<Text>("message");
        QTest::newRow("as documented")
            << quoted("{\n 'error': {\n 'code': 400,\n 'message': 'No.',\n 'status': 'X'}}")
            << Text(u"No."_s);
        QTest::newRow("message alone") << quoted("{'error':{'message':'No.'}}") << Text(u"No."_s);
        QTest::newRow("no message") << quoted("{'error':{'code':400}}") << Text();
        QTest::newRow("code is a text")
            << quoted("{'error':{'code':'400','message':'No.'}}") << Text();
        QTest::newRow("a page") << quoted("<html>Bad Request</html>") << Text();
        QTest::newRow("nothing") << QByteArray() << Text();
    }
    void geminiErrors()
    {
        QFETCH(QByteArray, body);
        json::Parser parser;
        QTEST(geminiErrorMessage(parser, view(body)), "message");
    }

    void entryTag_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("entry");
        QTest::newRow("at once") << u"<entry>Rome</entry>"_s << u"Rome</entry>"_s;
        QTest::newRow("behind a remark") << u"Let me look <ent <<entry>Rome"_s << u"Rome"_s;
        QTest::newRow("second tag is text") << u"<entry>a <entry> b"_s << u"a <entry> b"_s;
        QTest::newRow("never") << u"Rome <entry"_s << u"Rome <entry"_s;
        QTest::newRow("other case") << u"<Entry>Rome"_s << u"<Entry>Rome"_s;
        QTest::newRow("tag alone") << u"<entry>"_s << u""_s;
        QTest::newRow("nothing") << u""_s << u""_s;
    }
    void entryTag()
    {
        QFETCH(QString, answer);
        for (int length = 1; length <= answer.size() + 1; ++length) {
            EntryTagFilter filter;
            QString entry;
            for (qsizetype start = 0; start < answer.size(); start += length)
                entry += filter.filter(answer.mid(start, length)).value_or(QString());
            entry += filter.rest().value_or(QString());
            QTEST(entry, "entry");
        }
    }

    void nothingPassesBeforeTheTag()
    {
        EntryTagFilter filter;
        QVERIFY(!filter.filter(u"I'll search first."_s));
        QVERIFY(!filter.filter(u"<en"_s));
        QCOMPARE(filter.filter(u"try>Rome is"_s), u"Rome is"_s);
        QCOMPARE(filter.filter(u""_s), u""_s);
        QCOMPARE(filter.filter(u" a city"_s), u" a city"_s);
        QVERIFY(!filter.rest());
    }

    void arrays_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<QStringList>("list");
        const auto row = [](const char* name, const QString& text, bool valid = false,
                            const QStringList& list = {}) {
            QTest::newRow(name) << text << valid << list;
        };
        row("bare", u"[\"A\",\"B\"]"_s, true, {u"A"_s, u"B"_s});
        row("in prose and a fence", u"Here it is:\n```json\n[\"A\", \"B\"]\n```\nEnjoy!"_s, true,
            {u"A"_s, u"B"_s});
        row("empty", u" [ ] "_s, true);
        row("brackets inside", u"[\"A [1]\", \"]\"]"_s, true, {u"A [1]"_s, u"]"_s});
        row("escapes", u"[\"\\u00c9lan\", \"\\\"\"]"_s, true, {u"Élan"_s, u"\""_s});
        row("numbers", u"[1, 2]"_s);
        row("one number", u"[\"A\", 2]"_s);
        row("null", u"[null]"_s);
        row("nested", u"[[\"A\"]]"_s);
        row("two arrays", u"[\"A\"] and [\"B\"]"_s);
        row("trailing comma", u"[\"A\",]"_s);
        row("no brackets", u"none"_s);
        row("opening alone", u"[\"A\""_s);
        row("closing alone", u"\"A\"]"_s);
        row("nothing", QString());
    }
    void arrays()
    {
        QFETCH(QString, text);
        QFETCH(bool, valid);
        const auto list = parseJSONArray(text);
        QCOMPARE(list.has_value(), valid);
        QTEST(list.value_or(QStringList()), "list");
    }

    void reversedBracketsEndTheProcess()
    {
        QProcess child;
        child.setProcessChannelMode(QProcess::MergedChannels);
        child.start(QCoreApplication::applicationFilePath(), {u"reversedBrackets"_s});
        QVERIFY(child.waitForFinished());
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        QVERIFY(child.readAll().contains("stands before the first"));
    }
};

static const TestEntry reversedBrackets("reversedBrackets", [](int, char**) {
    return parseJSONArray(u"] and ["_s) ? 0 : 1;
});
VARNO_TEST(QCoreApplication, WireFormatTest)
#include "WireFormatTest.moc"
