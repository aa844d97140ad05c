#include "core/EntryText.h"

#include <QTest>

using namespace varno;
using namespace Qt::StringLiterals;

class EntryTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void answers_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("entry");
        QTest::addColumn<QString>("topics"); // null when there is no such line
        QTest::newRow("as asked") << u"\nText.\n\nSEE_ALSO_JSON: [\"A\",\"B\"]\n</entry>"_s
                                  << u"Text."_s << u"[\"A\",\"B\"]\n</entry>"_s;
        QTest::newRow("no topics") << u"Text. </entry> after"_s << u"Text."_s << QString();
        QTest::newRow("neither") << u"  Text <entry>\n"_s << u"Text <entry>"_s << QString();
        QTest::newRow("tag before topics")
            << u"Text.</entry>\nSEE_ALSO_JSON: [\"A\"]"_s << u"Text."_s << u"[\"A\"]"_s;
        QTest::newRow("two markers")
            << u"One SEE_ALSO_JSON: x SEE_ALSO_JSON: []"_s << u"One"_s << u"x SEE_ALSO_JSON: []"_s;
        QTest::newRow("other case")
            << u"One see_also_json: []"_s << u"One see_also_json: []"_s << QString();
        QTest::newRow("marker alone") << u"SEE_ALSO_JSON:"_s << u""_s << u""_s;
        QTest::newRow("nothing") << u""_s << u""_s << QString();
    }
    void answers()
    {
        QFETCH(QString, answer);
        QFETCH(QString, topics);
        QTEST(cleanEntryText(answer), "entry");
        const auto found = relatedTopicsText(answer);
        QCOMPARE(found.has_value(), !topics.isNull());
        QCOMPARE(found.value_or(QString()), topics);
    }

    void titles_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<QString>("title");
        QTest::newRow("words") << u"the history OF rome"_s << u"The History Of Rome"_s;
        QTest::newRow("any white space") << u"a\tb\nc\u2003d"_s << u"A\tB\nC\u2003D"_s;
        QTest::newRow("runs stay") << u"black   holes"_s << u"Black   Holes"_s;
        QTest::newRow("inside a word") << u"o'neill first-class"_s << u"O'neill First-class"_s;
        QTest::newRow("behind a quote")
            << u"«rome» \"and\" (carthage)"_s << u"«Rome» \"And\" (Carthage)"_s;
        QTest::newRow("accents") << u"élan ÉCOLE"_s << u"Élan École"_s;
        QTest::newRow("grows") << u"ßtraße"_s << u"SStraße"_s;
        QTest::newRow("no case") << u"罗马 帝国"_s << u"罗马 帝国"_s;
        QTest::newRow("beyond the first plane")
            << u"\U00010428\U00010428"_s << u"\U00010400\U00010428"_s;
        QTest::newRow("emoji") << u"\U0001F3DB rome"_s << u"\U0001F3DB Rome"_s;
        QTest::newRow("nothing") << u""_s << u""_s;
    }
    void titles()
    {
        QFETCH(QString, query);
        QTEST(capitalised(query), "title");
    }
};

VARNO_TEST(QCoreApplication, EntryTextTest)
#include "EntryTextTest.moc"
