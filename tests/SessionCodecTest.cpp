#include "core/SessionCodec.h"

#include "tests/FileContents.h"
#include "tests/Test.h"

#include <bit>
#include <limits>

namespace {

const auto rootId = QUuid::fromString(u"0A1B2C3D-0000-4000-8000-00000000000F");
const auto sectionId = QUuid::fromString(u"0A1B2C3D-0000-4000-8000-00000000001F");

/// One session of two pages, written by hand.
QByteArray handWritten()
{
    return contents(QFINDTESTDATA("data/session_history.json"));
}

/// What is left of `json` when all is refused that has to be.
QList<Session> decoded(const QByteArray& json)
{
    return decodeSessions(json).value_or(DecodedSessions()).sessions;
}

/// The session written by hand, with a change.
QByteArray withReplaced(const char* before, const char* after)
{
    QByteArray text = handWritten();
    if (!text.contains(before))
        qFatal("the sample has no %s", before);
    return text.replace(before, after);
}

} // namespace

class SessionCodecTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsTheDocumentedForm()
    {
        const auto sessions = decodeSessions(handWritten());
        QVERIFY(sessions && sessions->refused == 0);
        QCOMPARE(sessions->sessions.size(), 1);
        const Session& session = sessions->sessions.constFirst();
        QCOMPARE(session.rootQuery, u"stoicism"_s);
        QCOMPARE(session.createdAt, 785000000.25);
        QCOMPARE(session.pages.size(), 2);
        QCOMPARE(session.rootPage()->id, rootId);
        QCOMPARE(session.rootPage()->content, u"A \"school\""_s);
        QCOMPARE(session.rootPage()->tableOfContents, QStringList({u"Logic"_s, u"Ethics"_s}));
        QVERIFY(!session.rootPage()->parentPageId);
        QVERIFY(!session.rootPage()->parentSectionName);
        QCOMPARE(session.currentPage()->id, sectionId);
        QCOMPARE(session.currentPage()->parentPageId, rootId);
        QCOMPARE(session.currentPage()->parentSectionName, u"Logic"_s);
    }

    void writesTheDocumentedForm()
    {
        const QList<Session> sessions = decoded(handWritten());
        QByteArray written = encodeSessions(sessions);
        QCOMPARE(decoded(written), sessions);
        written.replace("\"pages\":[", "\"pages\":{").replace("}],", "}},");
        written.replace("\",{\"id\"", "\":{\"id\""); // pages by their ids read too
        QCOMPARE(decoded(written), sessions);

        Session section = sessions.constFirst();
        section.remove(rootId);
        QCOMPARE(encodeSessions({section}),
                 R"([{"id":"11111111-2222-4333-8444-555555555555","rootQuery":"stoicism",)"
                 R"("pages":["0A1B2C3D-0000-4000-8000-00000000001F",)"
                 R"({"id":"0A1B2C3D-0000-4000-8000-00000000001F","title":"Logic","content":"",)"
                 R"("tableOfContents":[],"seeAlso":[],)"
                 R"("parentPageId":"0A1B2C3D-0000-4000-8000-00000000000F",)"
                 R"("parentSectionName":"Logic","entryType":"full"}],)"
                 R"("navigationHistory":["0A1B2C3D-0000-4000-8000-00000000001F"],)"
                 R"("createdAt":785000000.25}])");
        Session root = sessions.constFirst();
        root.remove(sectionId);
        QVERIFY(!encodeSessions({root}).contains("parent"));
    }

    void refuses()
    {
        for (const auto& json : {QByteArray(), handWritten() + "x", QByteArray("{}")})
            QVERIFY(!decodeSessions(json));
        QCOMPARE(decodeSessions("[\"x\"]")->refused, 1);
        for (const auto& [before, after] : Rows<const char*, const char*>{
                 {"seeAlso", "seealso"},
                 {"\"full\"", "\"Full\""},
                 {"785000000.25", "\"785000000.25\""},
                 {"[\"Zeno\"]", "[1]"},
                 {"\"parentSectionName\":\"Logic\"", "\"parentSectionName\":1"},
                 {"\"parentPageId\":null", "\"parentPageId\":\"x\""},
                 {"\"11111111-2222-4333-8444-555555555555\"",
                  "\"{1111111-2222-4333-8444-55555555555}\""},
                 {"11111111-2222", "11111111-222-"},
                 {"11111111-2222", "1111111g-2222"},
                 {"\"id\":\"0A1B2C3D-0000-4000-8000-00000000001F\"",
                  "\"id\":\"0A1B2C3D-0000-4000-8000-00000000002F\""},
                 {"\"pages\":[", "\"pages\":[\"0A1B2C3D-0000-4000-8000-00000000002F\","},
                 {"\"pages\":[", "\"pages\":1,\"other\":["}}) {
            const InRow row(after);
            const auto sessions = decodeSessions(withReplaced(before, after));
            QCOMPARE(sessions->refused, 1);
            QVERIFY(sessions->sessions.isEmpty());
        }
    }

    void datesSurviveToTheLastBit()
    {
        using Limits = std::numeric_limits<double>;
        for (const double date : {-0.0, 785000000.1234567, 18446744073709551616.0, -Limits::max(),
                                  Limits::denorm_min()}) {
            Session session;
            session.createdAt = date;
            const QList<Session> read = decoded(encodeSessions({session}));
            QCOMPARE(read.size(), 1);
            QCOMPARE(std::bit_cast<quint64>(read.constFirst().createdAt),
                     std::bit_cast<quint64>(date));
        }
    }

    void textsSurvive()
    {
        const QString text =
            u"\t\n\r\b\f\u0001\u001f\u007f\"\\/ \\u0041 \U0001F3DB e\u0301\uFEFF"_s +
            u"a\u2028b\u0085"_s + QChar(u'\0') + u"c"_s;
        Page page;
        page.id = QUuid::createUuid();
        page.title = page.content = text;
        page.seeAlso = {text, QString()};
        page.parentSectionName = text;
        Session session;
        session.rootQuery = text;
        session.push(page);
        QCOMPARE(decoded(encodeSessions({session, session})), QList<Session>({session, session}));

        session.rootQuery = u"a"_s + QChar(0xD800) + u"b"_s; // half a character spoils no more
        QVERIFY(decoded(encodeSessions({session})).constFirst().rootQuery.startsWith(u'a'));
    }

    void unknownNumbersAndAByteOrderMarkDoNotCount()
    {
        QByteArray json =
            withReplaced("\"createdAt\"", "\"later\":[-99999999999999999999,1e999,{\"\\\"1e999\":"
                                          "18446744073709551616}],\"createdAt\"");
        json.prepend("\xEF\xBB\xBF");
        json.squeeze();
        QCOMPARE(decoded(json), decoded(handWritten()));
        json.prepend(QByteArray(100, ' '));
        json.squeeze();
        json.remove(0, 103); // leaves room in front alone
        QCOMPARE(decoded(json), decoded(handWritten()));
        // A number that is ours is read as far as there are doubles.
        json = withReplaced("785000000.25", "100000000000000000000000");
        QCOMPARE(decoded(json).constFirst().createdAt, 1e23);
    }

    void oneBadSessionDoesNotCostTheOthers()
    {
        const QByteArray good = handWritten().trimmed().sliced(1).chopped(1); // without brackets
        const auto sessions = decodeSessions('[' + good + ",{}," + good + ']');
        QVERIFY(sessions);
        QCOMPARE(sessions->refused, 1);
        QCOMPARE(sessions->sessions, decoded(handWritten()) + decoded(handWritten()));
    }

    void idsReadInEitherCase()
    {
        QCOMPARE(decoded(withReplaced("0A1B2C3D", "0a1b2c3d")), decoded(handWritten()));
        // The trail leads to pages that are there.
        QCOMPARE(decoded(withReplaced("\"]}]", "\",\"11111111-2222-4333-8444-555555555555\"]}]")),
                 decoded(handWritten()));
        const auto other = "\"navigationHistory\":[\"0A1B2C3D-0000-4000-8000-00000000002F\",";
        QVERIFY(!decoded(withReplaced("\"navigationHistory\":[", other)).constFirst().rootPage());
    }

    void whatIsTooLongIsLeftOut()
    {
        Session small;
        Session large;
        large.rootQuery = QString(1000, u'x');
        const QByteArray both = encodeSessions({small, small});
        QCOMPARE(encodeSessions({small, large, small}, both.size()), both);
        QCOMPARE(encodeSessions({small, small}, both.size() - 1), encodeSessions({small}));
    }
};

VARNO_TEST(QCoreApplication, SessionCodecTest)
#include "SessionCodecTest.moc"
