#pragma once

#include "platform/PreferencesStore.h"
#include "tests/Test.h"

#include <QSignalSpy>

#include <memory>

namespace varno {

/// Opens the same store again, as another program does.
using MakePreferences = std::function<std::unique_ptr<PreferencesStore>()>;

/// Lists that are hard to write down.
inline QList<QStringList> hardLists()
{
    return {QStringList(),
            QStringList{u""_s},
            QStringList{u""_s, u""_s},
            QStringList{u"  blanks  "_s, u"a, b"_s, u"a;b=c#d"_s},
            QStringList{u"\"quoted\" \\n \\"_s, u"two\r\nlines\tand\n"_s},
            QStringList{QChar(0x1f) + u"0Fg"_s, QChar(0) + u"7z"_s, u"Größe 名前 🦊"_s},
            QStringList{u"@Invalid()"_s},
            QStringList{u"@String(x)"_s, u"@@"_s, u"%41%%"_s},
            QStringList{u"[General]"_s, u"it's?"_s}};
}

inline void verifyListsAreKept(const MakePreferences& make)
{
    const auto store = make();
    QVERIFY(!store->contains(u"a"_s));
    const auto lists = hardLists();
    for (const QStringList& value : lists) {
        const InRow row(value);
        store->setStringArray(u"a"_s, value);
        QCOMPARE(store->stringArray(u"a"_s), std::optional(value));
        store->waitForDone();
        QCOMPARE(make()->stringArray(u"a"_s), std::optional(value));
    }
}

inline void verifyProgramsKeepWhatEachSets(const MakePreferences& make)
{
    const auto one = make();
    const auto other = make();
    const auto add = [](const QString& word) {
        return [word](QStringList list) { return list << word; };
    };
    one->setString(u"a"_s, u"1"_s);
    one->editStringArray(u"list"_s, add(u"x"_s));
    one->waitForDone();
    const QSignalSpy changes(other.get(), &PreferencesStore::changed);
    other->setString(u"b"_s, u"2"_s);
    other->editStringArray(u"list"_s, add(u"y"_s));
    QTRY_COMPARE(other->string(u"a"_s), u"1"_s);
    QCOMPARE(other->stringArray(u"list"_s), QStringList({u"x"_s, u"y"_s}));
    QVERIFY(!changes.isEmpty());
    one->refresh();
    QTRY_COMPARE(one->string(u"b"_s), u"2"_s);
    QCOMPARE(one->stringArray(u"list"_s), QStringList({u"x"_s, u"y"_s}));
}

} // namespace varno
