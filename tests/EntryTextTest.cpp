#include "core/EntryText.h"

#include "core/Prompts.h"
#include "tests/Test.h"

#include <QCryptographicHash>

class EntryTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void kindFollowsTheNumberOfWords()
    {
        using enum EntryType;
        for (const auto& [query, type] : Rows<QString, EntryType>{
                 {u"photosynthesis"_s, definition},
                 {u"black holes"_s, shortAnswer},
                 {u"how do vaccines work"_s, shortAnswer},
                 {u"why is the sea salty"_s, full},
                 {u"  quantum    mechanics   "_s, shortAnswer},
                 {u"a\tb\nc\u00A0d\ne"_s, definition}, // none of them parts words
                 {u"\n\t photosynthesis\u2003\n"_s, definition},
                 {u" \t "_s, full}}) {
            const InRow row(query);
            QCOMPARE(detectEntryType(query), type);
        }
    }

    /// The texts are a contract with the models and with what reads their answers: any change to a
    /// single byte shows here. One that is meant changes the sum.
    void textsAreByteForByte()
    {
        const QString query = u"{query}"_s;
        const QStringList texts = {entryPrompt(EntryType::definition, query),
                                   entryPrompt(EntryType::shortAnswer, query),
                                   entryPrompt(EntryType::full, query),
                                   sectionPrompt(u"{section}"_s, u"{topic}"_s),
                                   entrySystemPrompt(),
                                   tocPrompt(u"{topic}"_s),
                                   tocSystemPrompt()};
        const QByteArray all = texts.join(u'\n').toUtf8();
        QCOMPARE(QCryptographicHash::hash(all, QCryptographicHash::Sha256).toHex(),
                 QByteArray("7e7594b855096474574c018ced7266cfd9335d6736fa272371a564f90b51e57b"));
    }

    void topicsGoInAsTheyAre()
    {
        const QString hostile = u"the \"%1\" and %2 of {query} \\ 100%"_s;
        const QString quoted = u'"' + hostile + u'"';
        for (const QString& prompt : {entryPrompt(EntryType::definition, hostile),
                                      entryPrompt(EntryType::shortAnswer, hostile),
                                      entryPrompt(EntryType::full, hostile), tocPrompt(hostile)})
            QCOMPARE(prompt.count(quoted), 1);
        QCOMPARE(sectionPrompt(hostile, u"%1 Stoicism"_s).count(quoted), 2);
    }

    void answers()
    {
        for (const auto& [answer, entry, topics] : Rows<QString, QString, std::optional<QString>>{
                 {u"\nText.\n\nSEE_ALSO_JSON: [\"A\"]\n</entry>"_s, u"Text."_s,
                  u"[\"A\"]\n</entry>"_s},
                 {u"Text. </entry> after"_s, u"Text."_s, {}},
                 {u"  Text <entry>\n"_s, u"Text <entry>"_s, {}},
                 {u"Text.</entry>\nSEE_ALSO_JSON: [\"A\"]"_s, u"Text."_s, u"[\"A\"]"_s},
                 {u"One SEE_ALSO_JSON: x SEE_ALSO_JSON: []"_s, u"One"_s, u"x SEE_ALSO_JSON: []"_s},
                 {u"One see_also_json: []"_s, u"One see_also_json: []"_s, {}},
                 {u"SEE_ALSO_JSON:"_s, u""_s, u""_s}}) {
            const InRow row(answer);
            QCOMPARE(cleanEntryText(answer), entry);
            QCOMPARE(relatedTopicsText(answer), topics);
        }
    }

    void titles()
    {
        for (const auto& [query, title] : Rows<QString, QString>{
                 {u"the history OF rome"_s, u"The History Of Rome"_s},
                 {u"a\tb\nc\u2003d   e"_s, u"A\tB\nC\u2003D   E"_s},
                 {u"o'neill first-class"_s, u"O'neill First-class"_s},
                 {u"«rome» \"and\" (carthage)"_s, u"«Rome» \"And\" (Carthage)"_s},
                 {u"élan ÉCOLE ßtraße"_s, u"Élan École SStraße"_s},
                 {u"罗马 帝国"_s, u"罗马 帝国"_s},
                 {u"\U00010428\U00010428 \U0001F3DB rome"_s,
                  u"\U00010400\U00010428 \U0001F3DB Rome"_s},
                 {u"\xD801"_s, u"\xD801"_s} // half a character
             }) {
            const InRow row(query);
            QCOMPARE(capitalised(query), title);
        }
    }
};

VARNO_TEST(QCoreApplication, EntryTextTest)
#include "EntryTextTest.moc"
