#include "platform/CarbonModifiers.h"
#include "platform/fake/FakeHotKeyEvents.h"
#include "platform/fake/FakeKeyboard.h"
#include "platform/linux/IniPreferencesStore.h"
#include "platform/linux/XcbKeyCodes.h"
#include "shortcuts/KeyLabel.h"
#include "shortcuts/KeyboardShortcuts.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <set>

using namespace varno;
using namespace Qt::StringLiterals;
using Name = KeyboardShortcuts::Name;

namespace {

const Shortcut optionCommandF(Key::f, Modifier::option | Modifier::command);
const Shortcut controlJ(Key::j, Modifier::control);
const auto storageKey = u"KeyboardShortcuts_openVarno"_s;
const auto storedDefault = u"{\"carbonKeyCode\":3,\"carbonModifiers\":2304}"_s;

} // namespace

class ShortcutTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    int m_number = 0;
    FakeKeyboard m_keyboard;
    FakeHotKeyEvents m_events;

    /// Preferences in a file, as a process that starts finds them.
    std::unique_ptr<IniPreferencesStore> started(const QString& text = {})
    {
        ++m_number;
        auto store = startedAgain();
        if (!text.isNull())
            store->setString(storageKey, text);
        return store;
    }

    std::unique_ptr<IniPreferencesStore> startedAgain()
    {
        return std::make_unique<IniPreferencesStore>(m_folder.filePath(u"%1.conf"_s.arg(m_number)));
    }

private Q_SLOTS:
    void init() { m_keyboard.setCharacters({}); }

    void carbonMasksKeepFiveModifiers()
    {
        const std::array<std::pair<int, quint32>, 5> modifiers = {{{0x100, 0x100000},
                                                                   {0x200, 0x20000},
                                                                   {0x800, 0x80000},
                                                                   {0x1000, 0x40000},
                                                                   {0x20000, 0x800000}}};
        for (const auto& [carbon, flag] : modifiers) {
            QCOMPARE(modifiersOf(carbon).toInt(), flag);
            QCOMPARE(carbonModifiersOf(Modifiers::fromInt(flag)), carbon);
        }
        QCOMPARE(modifiersOf(~(0x100 | 0x200 | 0x800 | 0x1000 | 0x20000)), Modifiers());
        QCOMPARE(carbonModifiersOf(Modifier::capsLock), 0);
    }

    void descriptions_data()
    {
        QTest::addColumn<Shortcut>("shortcut");
        QTest::addColumn<QString>("text");
        QTest::newRow("the default") << optionCommandF << u"⌥⌘F"_s;
        QTest::newRow("all modifiers")
            << Shortcut(Key::returnKey, Modifier::function | Modifier::command | Modifier::shift |
                                            Modifier::option | Modifier::control)
            << u"⌃⌥⇧⌘"_s + QString::fromUcs4(U"\U0001F310\uFE0E") + u"↩"_s;
        QTest::newRow("what the layout types") << Shortcut(Key::y, Modifier::command) << u"⌘Z"_s;
        QTest::newRow("no second letter") << Shortcut(Key::minus, Modifiers()) << u"ß"_s;
        QTest::newRow("no layout for a special key") << Shortcut(Key::space, {}) << u"Space"_s;
    }

    void descriptions()
    {
        QFETCH(Shortcut, shortcut);
        m_keyboard.setCharacters({{static_cast<int>(Key::y), u"z"_s},
                                  {static_cast<int>(Key::minus), u"ß"_s},
                                  {static_cast<int>(Key::space), u" "_s}});
        QTEST(shortcut.description(m_keyboard), "text");
    }

    void everyKeyHasItsOwnLabelAndPlace()
    {
        std::set<QString> labels;
        std::set<int> places;
        for (int code = 0; code < 0x80; ++code) {
            const KeyLabel label = keyLabel(code);
            const std::optional<quint8> place = xKeyCode(code);
            QVERIFY2(!place || !label.text.isEmpty(), qPrintable(QString::number(code)));
            if (label.text.isEmpty())
                continue;
            QVERIFY(labels.insert(label.text.toString()).second);
            if (!place) {
                QCOMPARE(static_cast<Key>(code), Key::keypadClear); // where PCs have Num Lock
                continue;
            }
            QVERIFY(places.insert(*place).second);
            QCOMPARE(carbonKeyCodeOf(*place), std::optional(code));
        }
        for (const QChar character : u"ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"_s)
            QVERIFY(labels.contains(character));
        for (int number = 1; number <= 20; ++number)
            QVERIFY(labels.contains(u"F%1"_s.arg(number)));
    }

    void firstStartStoresTheDefault()
    {
        const auto store = started();
        KeyboardShortcuts shortcuts(*store, m_events, m_keyboard);
        const Name name(u"openVarno"_s, optionCommandF, shortcuts);
        QCOMPARE(store->string(storageKey), std::optional(storedDefault));
        QCOMPARE(shortcuts.getShortcut(name), std::optional(optionCommandF));
    }

    void storedTexts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isShortcut");
        QTest::newRow("as written") << storedDefault << true;
        QTest::newRow("other form")
            << u" { \"x\": [], \"carbonModifiers\": 2304.0, \"carbonKeyCode\": 3 }"_s << true;
        for (const QString& text :
             {u""_s, u"false"_s, u"{"_s, u"[3,2304]"_s, u"{\"carbonKeyCode\":3}"_s,
              u"{\"carbonKeyCode\":3.5,\"carbonModifiers\":2304}"_s,
              u"{\"carbonKeyCode\":\"3\",\"carbonModifiers\":2304}"_s,
              u"{\"carbonKeyCode\":3,\"carbonModifiers\":1e300}"_s})
            QTest::newRow(qPrintable(text)) << text << false;
    }

    void storedTexts()
    {
        QFETCH(QString, text);
        QFETCH(bool, isShortcut);
        const auto store = started(text);
        KeyboardShortcuts shortcuts(*store, m_events, m_keyboard);
        const Name name(u"openVarno"_s, controlJ, shortcuts);
        QCOMPARE(store->string(storageKey), std::optional(text)); // never overwritten
        QCOMPARE(shortcuts.getShortcut(name),
                 isShortcut ? std::optional(optionCommandF) : std::nullopt);
    }

    void clearedStaysCleared()
    {
        const auto store = started();
        KeyboardShortcuts shortcuts(*store, m_events, m_keyboard);
        const Name name(u"openVarno"_s, optionCommandF, shortcuts);
        QSignalSpy changes(&shortcuts, &KeyboardShortcuts::shortcutByNameDidChange);
        shortcuts.setShortcut({}, name);
        QCOMPARE(changes.size(), 1);
        shortcuts.setShortcut({}, name);
        QCOMPARE(changes.size(), 1);
        QCOMPARE(store->boolean(storageKey), std::optional(false));

        const auto storeAgain = startedAgain();
        KeyboardShortcuts again(*storeAgain, m_events, m_keyboard);
        const Name sameName(u"openVarno"_s, optionCommandF, again);
        QVERIFY(!again.getShortcut(sameName));
        again.reset({sameName});
        QCOMPARE(storeAgain->string(storageKey), std::optional(storedDefault));
    }

    void withoutDefaultNothingIsLeft()
    {
        const auto store = started();
        KeyboardShortcuts shortcuts(*store, m_events, m_keyboard);
        const Name name(u"openVarno"_s, {}, shortcuts);
        QVERIFY(!store->contains(storageKey));
        shortcuts.setShortcut(controlJ, name);
        shortcuts.setShortcut({}, name);
        QVERIFY(!startedAgain()->contains(storageKey));
        shortcuts.setShortcut(controlJ, name);
        shortcuts.resetAll();
        QVERIFY(!startedAgain()->contains(storageKey));
    }
};

VARNO_TEST(QCoreApplication, ShortcutTest)
#include "ShortcutTest.moc"
