#include "demo/EntryLibrary.h"

#include "core/EntryText.h"
#include "core/Prompts.h"
#include "demo/ModelAnswer.h"
#include "demo/Question.h"
#include "providers/JsonArray.h"

#include <QDirIterator>
#include <QFile>
#include <QTest>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

QString sourceText(const QString& path)
{
    QFile file(QFINDTESTDATA("../demo/library") + u'/' + path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

class EntryLibraryTest : public QObject {
    Q_OBJECT

private slots:
    void libraryIsWhole()
    {
        const EntryLibrary library;
        const QString source = QFINDTESTDATA("../demo/library");
        QDirIterator files(source, QDir::Files, QDirIterator::Subdirectories);
        int count = 0;
        while (files.hasNext()) {
            const QString path = files.next().sliced(source.size());
            ++count;
            const QByteArray name = QFile::encodeName(path);
            QVERIFY2(QFile::exists(u":/varno/library"_s + path), name.constData());
            const QString text = sourceText(path);
            const auto related = relatedTopicsText(text);
            QVERIFY2(related && !related->contains(u'\n'), name.constData());
            QVERIFY2(parseJSONArray(*related).value_or(QStringList()).size() >= 4,
                     name.constData());
            QVERIFY2(!cleanEntryText(text).isEmpty(), name.constData());
        }
        for (const LibraryTopic& topic : library.topics()) {
            count -= topic.definition.has_value() + topic.answer.has_value() +
                     topic.article.has_value() + static_cast<int>(topic.sections.size());
            QCOMPARE(topic.article.has_value(), topic.sections.size() >= 5);
            QCOMPARE(library.find(topic.title), &topic);
        }
        QCOMPARE(count, 0);
        QVERIFY(library.topics().size() >= 10);
    }

    void findsTopics_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<QString>("title");
        const QString rome = u"The History Of The Roman Empire"_s;
        QTest::newRow("case and blanks") << u"  sToiCism \n"_s << u"Stoicism"_s;
        QTest::newRow("title") << rome << rome;
        QTest::newRow("no article") << u"history of the  roman empire"_s << rome;
        QTest::newRow("short") << u"The Roman Empire"_s << rome;
        QTest::newRow("question") << u"How do vaccines work?"_s << u"How Do Vaccines Work"_s;
        QTest::newRow("alias") << u"Tides"_s << u"Why The Sea Has Tides Twice Daily"_s;
        QTest::newRow("article missing") << u"silk road"_s << u"The Silk Road"_s;
        QTest::newRow("part of a name") << u"roman"_s << QString();
        QTest::newRow("nothing") << QString() << QString();
        QTest::newRow("a path") << u"../stoicism"_s << QString();
    }
    void findsTopics()
    {
        QFETCH(QString, query);
        const EntryLibrary library;
        const LibraryTopic* topic = library.find(query);
        QTEST(topic ? topic->title : QString(), "title");
    }

    void answersEachKind()
    {
        const EntryLibrary library;
        const auto entry = [&library](const QString& prompt) {
            const QString text = modelAnswer(library, prompt);
            const qsizetype start = text.indexOf("<entry>"_L1) + 7;
            return text.endsWith("</entry>"_L1) ? text.sliced(start).chopped(8) : QString();
        };
        QCOMPARE(entry(entryPrompt(EntryType::definition, u"stoicism"_s)),
                 sourceText(u"stoicism/definition.md"_s));
        QCOMPARE(entry(entryPrompt(EntryType::shortAnswer, u"Black holes"_s)),
                 sourceText(u"black-holes/answer.md"_s));
        QCOMPARE(entry(entryPrompt(EntryType::full, u"black holes"_s)),
                 sourceText(u"black-holes/article.md"_s));
        QCOMPARE(entry(sectionPrompt(u"How Stars Collapse"_s, u"Black Holes"_s)),
                 sourceText(u"black-holes/sections/2 How Stars Collapse.md"_s));

        // An article alone gives its first paragraph where something shorter is asked for.
        const QString article = sourceText(u"the-history-of-the-roman-empire/article.md"_s);
        const QString answer = entry(entryPrompt(EntryType::shortAnswer, u"roman empire"_s));
        QCOMPARE(cleanEntryText(answer), article.section(u"\n\n"_s, 0, 0));
        QCOMPARE(relatedTopicsText(answer), relatedTopicsText(article));
    }

    void listsSections()
    {
        const EntryLibrary library;
        const QStringList sections = {u"Zeno and the Painted Porch"_s,
                                      u"Logic, Physics and Ethics"_s,
                                      u"What Is in Our Power"_s,
                                      u"The Roman Stoics"_s,
                                      u"Stoic Exercises"_s,
                                      u"A Long Afterlife"_s};
        for (const QString& topic : {u"stoicism"_s, u"Stoicism  "_s, u"the stoics "_s})
            QCOMPARE(parseJSONArray(modelAnswer(library, tocPrompt(topic))), sections);
        for (const QString& topic : {u"odd"_s, u"even"_s})
            QCOMPARE(parseJSONArray(modelAnswer(library, tocPrompt(topic))), QStringList());
    }

    /// So that clients have to find the answer.
    void someAnswersAreWrapped()
    {
        const EntryLibrary library;
        const auto answer = [&library](const QString& topic) {
            return modelAnswer(library, entryPrompt(EntryType::full, topic));
        };
        QVERIFY(answer(u"stoicism"_s).startsWith("<entry>"_L1));
        QVERIFY(answer(u"the stoics  "_s).indexOf("<entry>"_L1) > 0);
        QVERIFY(modelAnswer(library, tocPrompt(u"stoicism"_s)).startsWith(u'['));
        QVERIFY(modelAnswer(library, tocPrompt(u"stoicism "_s)).contains("```json\n["_L1));
    }

    void saysWhatIsMissing_data()
    {
        QTest::addColumn<QString>("prompt");
        QTest::addColumn<QString>("missing");
        const QString topic = u"quantum \"soup\""_s;
        QTest::newRow("definition") << entryPrompt(EntryType::definition, topic) << topic;
        QTest::newRow("short answer") << entryPrompt(EntryType::shortAnswer, topic) << topic;
        QTest::newRow("article") << entryPrompt(EntryType::full, topic) << topic;
        QTest::newRow("kind") << entryPrompt(EntryType::full, u"Palimpsest"_s) << u"Palimpsest"_s;
        QTest::newRow("section") << sectionPrompt(u"Spoons"_s, u"Black Holes"_s) << u"Spoons"_s;
        QTest::newRow("section of nothing") << sectionPrompt(u"Spoons"_s, topic) << topic;
        QTest::newRow("another prompt") << u"Sing a song!"_s << u"Sing a song!"_s;
    }
    void saysWhatIsMissing()
    {
        QFETCH(QString, prompt);
        QFETCH(QString, missing);
        const EntryLibrary library;
        const QString text = modelAnswer(library, prompt);
        const qsizetype start = text.indexOf("<entry>"_L1);
        QVERIFY(start >= 0);
        const QString entry = cleanEntryText(text.sliced(start + 7));
        for (const QString& part : {missing, u"demonstration"_s, u"Bioluminescence"_s})
            QVERIFY2(entry.contains(part), qUtf8Printable(part));
        const auto related = parseJSONArray(relatedTopicsText(text).value_or(QString()));
        QCOMPARE(related.value_or(QStringList()).size(), 5);
        for (const QString& title : *related)
            QVERIFY2(library.find(title), qUtf8Printable(title));
    }

    void readsPrompts_data()
    {
        QTest::addColumn<QString>("topic");
        QTest::newRow("plain") << u"stoicism"_s;
        QTest::newRow("quotes") << u"the \"great\" \"vowel\" shift\""_s;
        QTest::newRow("a placeholder") << u"%1 and %2"_s;
        QTest::newRow("the words of a prompt") << u"\". Include etymology if relevant. \"x"_s;
        QTest::newRow("the words of a section")
            << u"a\" section of an encyclopedia article about \"b"_s;
        QTest::newRow("another script") << u"ὁ λόγος 漢字 🙂"_s;
        QTest::newRow("lines") << u"one\ntwo"_s;
        QTest::newRow("nothing") << u""_s;
    }
    void readsPrompts()
    {
        QFETCH(QString, topic);
        for (const EntryType type :
             {EntryType::definition, EntryType::shortAnswer, EntryType::full})
            QCOMPARE(readPrompt(entryPrompt(type, topic)), Question(EntryQuestion{type, topic}));
        QCOMPARE(readPrompt(tocPrompt(topic)), Question(TOCQuestion{topic}));
        QCOMPARE(readPrompt(sectionPrompt(u"A \"name\""_s, topic)),
                 Question(SectionQuestion{u"A \"name\""_s, topic}));
    }

    void readsPromptsTypedByHand()
    {
        QCOMPARE(readPrompt(u"For the topic \"Rome\", please!"_s),
                 Question(TOCQuestion{u"Rome"_s}));
        QCOMPARE(
            readPrompt(u"Write the \"Roads\" section of an encyclopedia article about \"Rome\"."_s),
            Question(SectionQuestion{u"Roads"_s, u"Rome"_s}));
        QCOMPARE(readPrompt(u"Write the \"Roads\" song"_s), std::nullopt);
        QCOMPARE(readPrompt(u"For the topic \""_s), Question(TOCQuestion{QString()}));
    }
};

QTEST_GUILESS_MAIN(EntryLibraryTest)
#include "EntryLibraryTest.moc"
