#include "core/Prompts.h"

#include <QCryptographicHash>
#include <QTest>

using namespace varno;
using namespace Qt::StringLiterals;

class PromptsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void kindFollowsTheNumberOfWords_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<EntryType>("type");
        QTest::newRow("one word") << u"photosynthesis"_s << EntryType::definition;
        QTest::newRow("two words") << u"black holes"_s << EntryType::shortAnswer;
        QTest::newRow("four words") << u"how do vaccines work"_s << EntryType::shortAnswer;
        QTest::newRow("five words") << u"why is the sea salty"_s << EntryType::full;
        QTest::newRow("many words") << u"the history of the roman empire"_s << EntryType::full;
        QTest::newRow("runs of blanks") << u"  quantum    mechanics   "_s << EntryType::shortAnswer;
        QTest::newRow("tab is no separator") << u"quantum\tmechanics"_s << EntryType::definition;
        QTest::newRow("newline is no separator") << u"a\nb\nc\nd\ne"_s << EntryType::definition;
        QTest::newRow("no-break space is no separator") << u"a\u00A0b"_s << EntryType::definition;
        QTest::newRow("surrounding newlines")
            << u"\n\t photosynthesis\u2003\n"_s << EntryType::definition;
        QTest::newRow("nothing") << QString() << EntryType::full;
        QTest::newRow("blanks alone") << u" \t "_s << EntryType::full;
    }
    void kindFollowsTheNumberOfWords()
    {
        QFETCH(QString, query);
        QTEST(detectEntryType(query), "type");
    }

    /// The texts are a contract with the models and with what reads their answers: any change to a
    /// single byte shows here.
    void textsAreByteForByte_data()
    {
        QTest::addColumn<QString>("prompt");
        QTest::addColumn<QByteArray>("sha256");
        const QString query = u"{query}"_s;
        QTest::newRow("definition")
            << entryPrompt(EntryType::definition, query)
            << QByteArray("f7ecf69d686e034f95c3dfb9e9562cb8cadc229e2663bff2d229ed4f55346749");
        QTest::newRow("short answer")
            << entryPrompt(EntryType::shortAnswer, query)
            << QByteArray("d468e1db8db5515e95cbc7c551ae2e2adaec3e5698c2dbe14774dde99a594e06");
        QTest::newRow("full")
            << entryPrompt(EntryType::full, query)
            << QByteArray("7dd231ed4fe1b097b5687db3d7cb602ddb94c3c6109a1b89ab501bd4f1391bd4");
        QTest::newRow("section")
            << sectionPrompt(u"{section}"_s, u"{topic}"_s)
            << QByteArray("23b46d98e4522b9c10abc1a39c99fef93441c249f7ed6dd65f0505ba4c2db4f1");
        QTest::newRow("entry system")
            << entrySystemPrompt()
            << QByteArray("d869c158c7becef32a7fbef341f995d4168f1ed7b5e96eab7aefb4a639b2709e");
        QTest::newRow("contents")
            << tocPrompt(u"{topic}"_s)
            << QByteArray("326e98da7a5826bb1ac472f2e24ec855d248eaa9e1dca0c0d127e7240dabdf8a");
        QTest::newRow("contents system")
            << tocSystemPrompt()
            << QByteArray("f083f3868b5f1297186e259e8318e1d1b77364bb7be3efba478e8042ffff5807");
    }
    void textsAreByteForByte()
    {
        QFETCH(QString, prompt);
        QTEST(QCryptographicHash::hash(prompt.toUtf8(), QCryptographicHash::Sha256).toHex(),
              "sha256");
    }

    void topicsGoInAsTheyAre()
    {
        const QString hostile = u"the \"%1\" and %2 of {query} \\ 100%"_s;
        for (const EntryType type :
             {EntryType::definition, EntryType::shortAnswer, EntryType::full})
            QCOMPARE(entryPrompt(type, hostile).count(u'"' + hostile + u'"'), 1);
        QCOMPARE(tocPrompt(hostile).count(u'"' + hostile + u'"'), 1);

        const QString section = sectionPrompt(hostile, u"%1 Stoicism"_s);
        QCOMPARE(section.count(u'"' + hostile + u'"'), 2);
        QCOMPARE(section.count(u"\"%1 Stoicism\""_s), 2);
    }
};

VARNO_TEST(QCoreApplication, PromptsTest)
#include "PromptsTest.moc"
