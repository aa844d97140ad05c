#include "core/SessionCodec.h"

#include "tests/Test.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <bit>
#include <limits>

namespace {

constexpr auto rootId = "0A1B2C3D-0000-4000-8000-00000000000F"_L1;
constexpr auto sectionId = "0A1B2C3D-0000-4000-8000-00000000001F"_L1;

/// One session of two pages, written by hand.
QByteArray handWritten()
{
    QFile file(QFINDTESTDATA("data/session_history.json"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("the sample is missing");
    return file.readAll();
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
        QCOMPARE(session.rootPage()->id, QUuid::fromString(rootId));
        QCOMPARE(session.rootPage()->content, u"A \"school\""_s);
        QCOMPARE(session.rootPage()->tableOfContents, QStringList({u"Logic"_s, u"Ethics"_s}));
        QVERIFY(!session.rootPage()->parentPageId);
        QVERIFY(!session.rootPage()->parentSectionName);
        QCOMPARE(session.currentPage()->id, QUuid::fromString(sectionId));
        QCOMPARE(session.currentPage()->parentPageId, QUuid::fromString(rootId));
        QCOMPARE(session.currentPage()->parentSectionName, u"Logic"_s);
    }

    void writesTheDocumentedForm()
    {
        const QByteArray written = encodeSessions(decoded(handWritten()));
        QJsonObject session = QJsonDocument::fromJson(written).array().at(0).toObject();
        QCOMPARE(session.keys(), QStringList({u"createdAt"_s, u"id"_s, u"navigationHistory"_s,
                                              u"pages"_s, u"rootQuery"_s}));
        QCOMPARE(session["navigationHistory"_L1].toArray(), QJsonArray({rootId, sectionId}));

        const QJsonArray pages = session["pages"_L1].toArray();
        QCOMPARE(pages.size(), 4);
        const int root = pages.at(0) == rootId ? 0 : 2;
        QCOMPARE(pages.at(root), QJsonValue(rootId));
        QCOMPARE(pages.at(2 - root), QJsonValue(sectionId));
        const QJsonObject rootPage = pages.at(root + 1).toObject();
        QVERIFY(!rootPage.contains("parentPageId"_L1));
        QVERIFY(!rootPage.contains("parentSectionName"_L1));
        const QJsonObject section = pages.at(3 - root).toObject();
        QCOMPARE(section["parentPageId"_L1], QJsonValue(rootId));
        QCOMPARE(section["seeAlso"_L1], QJsonValue(QJsonArray()));
        QCOMPARE(section["entryType"_L1], QJsonValue("full"_L1));

        session["pages"_L1] = QJsonObject{{rootId, rootPage}, {sectionId, section}}; // reads too
        QCOMPARE(decoded(QJsonDocument(QJsonArray{session}).toJson()), decoded(handWritten()));
    }

    void refuses()
    {
        for (const auto& json : {QByteArray(), handWritten() + "x", QByteArray("{}")})
            QVERIFY(!decodeSessions(json));
        QCOMPARE(decodeSessions("[\"x\"]")->refused, 1);
        for (const auto& [before, after] : Rows<const char*, const char*>{
                 {"rootQuery", "rootquery"},
                 {"seeAlso", "seealso"},
                 {"\"full\"", "\"Full\""},
                 {"785000000.25", "\"785000000.25\""},
                 {"785000000.25", "null"},
                 {"785000000.25", "1e999"},
                 {"[\"Zeno\"]", "[1]"},
                 {"[\"Zeno\"]", "null"},
                 {"\"parentSectionName\":\"Logic\"", "\"parentSectionName\":1"},
                 {"\"parentPageId\":null", "\"parentPageId\":\"x\""},
                 {"\"11111111-2222-4333-8444-555555555555\"",
                  "\"{1111111-2222-4333-8444-55555555555}\""},
                 {"11111111-2222", "11111111-222-"},
                 {"11111111-2222", "11111111222-2"},
                 {"11111111-2222", "1111111g-2222"},
                 {"\"id\":\"0A1B2C3D-0000-4000-8000-00000000001F\"",
                  "\"id\":\"0A1B2C3D-0000-4000-8000-00000000002F\""},
                 {"\"navigationHistory\":[", "\"navigationHistory\":[null,"},
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
        for (const double date :
             {-0.0, 785000000.1234567, 9007199254740993.0, 18446744073709551616.0, 1e21,
              -Limits::max(), Limits::denorm_min()}) {
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
        const QByteArray json =
            withReplaced("1F\"]}]", "1F\",\"0A1B2C3D-0000-4000-8000-00000000002F\"]}]");
        QCOMPARE(decoded(json), decoded(handWritten()));
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
