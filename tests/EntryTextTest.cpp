#include "core/EntryText.h"

#include "tests/Test.h"

class EntryTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
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
