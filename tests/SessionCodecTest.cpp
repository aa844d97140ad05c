#include "core/SessionCodec.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <bit>
#include <limits>

using namespace varno;
using namespace Qt::StringLiterals;

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

QByteArray withReplaced(QByteArray text, const char* before, const char* after)
{
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
        const QJsonObject session = QJsonDocument::fromJson(written).array().at(0).toObject();
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
    }

    void readsPagesAsAnObject()
    {
        QJsonDocument document = QJsonDocument::fromJson(handWritten());
        QJsonObject session = document.array().at(0).toObject();
        const QJsonArray pairs = session["pages"_L1].toArray();
        session["pages"_L1] = QJsonObject{{rootId, pairs.at(1)}, {sectionId, pairs.at(3)}};
        QCOMPARE(decoded(QJsonDocument(QJsonArray{session}).toJson()), decoded(handWritten()));
    }

    void refuses_data()
    {
        QTest::addColumn<QByteArray>("json");
        const QByteArray good = handWritten();
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("half-written") << good.first(good.size() / 2);
        QTest::newRow("trailing text") << good + "x";
        QTest::newRow("object") << QByteArray("{}");
        QTest::newRow("session is a string") << QByteArray("[\"x\"]");
        QTest::newRow("missing key") << withReplaced(good, "rootQuery", "rootquery");
        QTest::newRow("missing page key") << withReplaced(good, "seeAlso", "seealso");
        QTest::newRow("unknown kind") << withReplaced(good, "\"full\"", "\"Full\"");
        QTest::newRow("date as string") << withReplaced(good, "785000000.25", "\"785000000.25\"");
        QTest::newRow("date as null") << withReplaced(good, "785000000.25", "null");
        QTest::newRow("list with a number") << withReplaced(good, "[\"Zeno\"]", "[1]");
        QTest::newRow("list is null") << withReplaced(good, "[\"Zeno\"]", "null");
        QTest::newRow("parent name is a number")
            << withReplaced(good, "\"parentSectionName\":\"Logic\"", "\"parentSectionName\":1");
        QTest::newRow("parent id is no id")
            << withReplaced(good, "\"parentPageId\":null", "\"parentPageId\":\"x\"");
        QTest::newRow("id in braces")
            << withReplaced(good, "\"11111111-2222-4333-8444-555555555555\"",
                            "\"{1111111-2222-4333-8444-55555555555}\"");
        QTest::newRow("id with another letter")
            << withReplaced(good, "11111111-2222", "1111111g-2222");
        QTest::newRow("history holds null")
            << withReplaced(good, "\"navigationHistory\":[", "\"navigationHistory\":[null,");
        QTest::newRow("odd number of pages") << withReplaced(
            good, "\"pages\":[", "\"pages\":[\"0A1B2C3D-0000-4000-8000-00000000002F\",");
        QTest::newRow("pages is a number") << QByteArray(
            "[{\"createdAt\":0,\"rootQuery\":\"\",\"pages\":1,\"navigationHistory\":[],"
            "\"id\":\"11111111-2222-4333-8444-555555555555\"}]");
        QTest::newRow("invalid UTF-8") << withReplaced(good, "Zeno", "Z\xffno");
        QTest::newRow("lone surrogate") << withReplaced(good, "Zeno", "\\ud800");
        QTest::newRow("nested without end") << QByteArray(5000000, '[');
        QTest::newRow("nested deeply") << QByteArray(100000, '[') + QByteArray(100000, ']');
    }
    void refuses()
    {
        QFETCH(QByteArray, json);
        QVERIFY(decoded(json).isEmpty());
        QVERIFY(!decodeSessions(json) || decodeSessions(json)->refused == 1);
    }

    void idsReadInEitherCase()
    {
        QCOMPARE(decoded(withReplaced(handWritten(), "0A1B2C3D", "0a1b2c3d")),
                 decoded(handWritten()));
    }

    void datesSurviveToTheLastBit_data()
    {
        QTest::addColumn<double>("date");
        using Limits = std::numeric_limits<double>;
        for (const double date :
             {0.0, -0.0, 785000000.1234567, 0.1, -978307200.0, 1e15, 9007199254740993.0,
              18446744073709551616.0, 123456789012345680000.0, 1e21, 1e22, -1e300, Limits::max(),
              Limits::min(), Limits::denorm_min(), 1.0 / 3.0})
            QTest::addRow("%.17g", date) << date;
    }
    void datesSurviveToTheLastBit()
    {
        QFETCH(double, date);
        Session session;
        session.createdAt = date;
        const QList<Session> read = decoded(encodeSessions({session}));
        QCOMPARE(read.size(), 1);
        QCOMPARE(std::bit_cast<quint64>(read.constFirst().createdAt), std::bit_cast<quint64>(date));
    }

    void textsSurvive_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("controls") << u"\t\n\r\b\f\u0001\u001f\u007f\"\\/"_s;
        QTest::newRow("NUL") << u"a"_s + QChar(u'\0') + u"b"_s;
        QTest::newRow("line separators") << u"a\u2028b\u2029c\u0085d"_s;
        QTest::newRow("beyond the first plane")
            << u"\U0001F3DB\U0001F468\u200D\U0001F469 e\u0301"_s;
        QTest::newRow("looks like an escape") << u"\\u0041 \\n"_s;
        QTest::newRow("byte-order mark") << u"\uFEFFx"_s;
    }
    void textsSurvive()
    {
        QFETCH(QString, text);
        Page page;
        page.id = QUuid::createUuid();
        page.title = page.content = text;
        page.seeAlso = {text, QString()};
        page.parentSectionName = text;
        Session session;
        session.rootQuery = text;
        session.push(page);
        QCOMPARE(decoded(encodeSessions({session, session})), QList<Session>({session, session}));
    }

    void loneSurrogateDoesNotSpoilTheFile()
    {
        Session session;
        session.rootQuery = u"a"_s + QChar(0xD800) + u"b"_s;
        const QList<Session> read = decoded(encodeSessions({session}));
        QCOMPARE(read.size(), 1);
        QVERIFY(read.constFirst().rootQuery.startsWith(u'a'));
    }

    void unknownNumbersAndAByteOrderMarkDoNotCount()
    {
        QByteArray json = withReplaced(handWritten(), "\"createdAt\"",
                                       "\"later\":[-99999999999999999999,1e999,{\"\\\"1e999\":"
                                       "18446744073709551616}],\"createdAt\"");
        json.prepend("\xEF\xBB\xBF");
        json.squeeze();
        QCOMPARE(decoded(json), decoded(handWritten()));
        json.prepend(QByteArray(100, ' '));
        json.squeeze();
        json.remove(0, 103); // leaves room in front alone
        QCOMPARE(decoded(json), decoded(handWritten()));
        // A number that is ours is read as far as there are doubles.
        json = withReplaced(handWritten(), "785000000.25", "100000000000000000000000");
        QCOMPARE(decoded(json).constFirst().createdAt, 1e23);
        QVERIFY(decoded(withReplaced(handWritten(), "785000000.25", "1e999")).isEmpty());
    }

    void oneBadSessionDoesNotCostTheOthers()
    {
        const QByteArray good = handWritten().trimmed().chopped(1); // without its bracket
        const QByteArray otherKey =
            withReplaced(good.mid(1), "\"id\":\"0A1B2C3D-0000-4000-8000-00000000001F\"",
                         "\"id\":\"0A1B2C3D-0000-4000-8000-00000000002F\"");
        const auto sessions = decodeSessions(good + ',' + otherKey + ",{}," + good.mid(1) + ']');
        QVERIFY(sessions);
        QCOMPARE(sessions->refused, 2);
        QCOMPARE(sessions->sessions, decoded(handWritten()) + decoded(handWritten()));
    }

    void trailLeadsToPagesThatAreThere()
    {
        const QByteArray json = withReplaced(handWritten(), "1F\"]}]",
                                             "1F\",\"0A1B2C3D-0000-4000-8000-00000000002F\"]}]");
        QCOMPARE(decoded(json), decoded(handWritten()));
        const auto section = "\"navigationHistory\":[\"0A1B2C3D-0000-4000-8000-00000000002F\",";
        QVERIFY(!decoded(withReplaced(handWritten(), "\"navigationHistory\":[", section))
                     .constFirst()
                     .rootPage());
    }

    void whatIsTooLongIsLeftOut()
    {
        Session small;
        Session large;
        large.rootQuery = QString(1000, u'x');
        const QByteArray both = encodeSessions({small, small});
        QCOMPARE(encodeSessions({small, large, small}, both.size()), both);
        QCOMPARE(encodeSessions({large}, 1000), "[]");
    }
};

VARNO_TEST(QCoreApplication, SessionCodecTest)
#include "SessionCodecTest.moc"
