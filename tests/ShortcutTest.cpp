#include "platform/KeyLabel.h"
#include "platform/fake/FakeHotKeyEvents.h"
#include "platform/fake/FakeKeyboard.h"
#include "platform/fake/FakePreferencesStore.h"
#include "platform/linux/XcbKeyCodes.h"
#include "shortcuts/KeyboardShortcuts.h"
#include "tests/Test.h"

#include <QSignalSpy>

#include <set>

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
    FakePreferencesStore m_store;
    FakeKeyboard m_keyboard;
    FakeHotKeyEvents m_events;

private Q_SLOTS:
    void init() { m_store.values.clear(); }

    void descriptions()
    {
        m_keyboard.setCharacters({{static_cast<int>(Key::y), u"z"_s},
                                  {static_cast<int>(Key::minus), u"ß"_s},
                                  {static_cast<int>(Key::space), u" "_s}});
        const Modifiers all = Modifier::function | Modifier::command | Modifier::shift |
                              Modifier::option | Modifier::control;
        const QString globe = QString::fromUcs4(U"\U0001F310\uFE0E");
        for (const auto& [shortcut, text, pcText] : Rows<Shortcut, QString, QString>{
                 {optionCommandF, u"⌥⌘F"_s, u"Alt+Super+F"_s},
                 {Shortcut(Key::returnKey, all), u"⌃⌥⇧⌘"_s + globe + u"↩"_s,
                  u"Ctrl+Alt+Shift+Super+Fn+Return"_s},
                 {Shortcut(static_cast<int>(Key::j), 0x1200), u"⌃⇧J"_s, u"Ctrl+Shift+J"_s},
                 {Shortcut(Key::y, Modifier::command), u"⌘Z"_s, u"Super+Z"_s}, // as it types
                 {Shortcut(Key::minus, {}), u"ß"_s, u"ß"_s},                   // no second letter
                 {Shortcut(Key::space, {}), u"Space"_s, u"Space"_s}}) {
            QCOMPARE(shortcut.description(m_keyboard), text);
            QCOMPARE(spelledOut(text), pcText);
            QCOMPARE(pcName(shortcut.carbonKeyCode(), shortcut.carbonModifiers(), m_keyboard),
                     pcText);
        }
    }

    void everyKeyHasItsOwnLabelAndPlace()
    {
        std::set<QString> labels;
        std::set<int> places;
        for (int code = 0; code < 0x80; ++code) {
            const InRow row(code);
            const KeyLabel label = keyLabel(code);
            const std::optional<quint8> place = xKeyCode(code);
            QVERIFY(!place || !label.text.isEmpty());
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
    }

    void storedTexts()
    {
        const QString otherForm =
            u" { \"x\": [], \"carbonModifiers\": 2304.0, \"carbonKeyCode\": 3 }"_s;
        for (const QString& text :
             {storedDefault, otherForm, u""_s, u"{"_s, u"[3,2304]"_s, u"{\"carbonKeyCode\":3}"_s,
              u"{\"carbonKeyCode\":3.5,\"carbonModifiers\":2304}"_s,
              u"{\"carbonKeyCode\":3,\"carbonModifiers\":1e300}"_s}) {
            const InRow row(text);
            m_store.setString(storageKey, text);
            KeyboardShortcuts shortcuts(m_store, m_events, m_keyboard);
            const Name name(u"openVarno"_s, controlJ, shortcuts);
            QCOMPARE(m_store.string(storageKey), std::optional(text)); // never overwritten
            QCOMPARE(shortcuts.getShortcut(name), text == storedDefault || text == otherForm
                                                      ? std::optional(optionCommandF)
                                                      : std::nullopt);
        }
    }

    void clearedStaysCleared()
    {
        KeyboardShortcuts shortcuts(m_store, m_events, m_keyboard);
        const Name name(u"openVarno"_s, optionCommandF, shortcuts);
        QCOMPARE(m_store.string(storageKey), std::optional(storedDefault)); // at the first start
        const QSignalSpy changes(&shortcuts, &KeyboardShortcuts::shortcutByNameDidChange);
        for (int time = 0; time < 2; ++time)
            shortcuts.setShortcut({}, name);
        QCOMPARE(changes.size(), 1);
        QCOMPARE(m_store.boolean(storageKey), std::optional(false));

        KeyboardShortcuts again(m_store, m_events, m_keyboard); // after a restart
        const Name sameName(u"openVarno"_s, optionCommandF, again);
        QVERIFY(!again.getShortcut(sameName));
        again.reset({sameName});
        QCOMPARE(m_store.string(storageKey), std::optional(storedDefault));

        const Name withoutDefault(u"other"_s, {}, again);
        again.setShortcut(controlJ, withoutDefault);
        again.setShortcut({}, withoutDefault);
        QVERIFY(!m_store.contains(u"KeyboardShortcuts_other"_s));
    }
};

VARNO_TEST(QCoreApplication, ShortcutTest)
#include "ShortcutTest.moc"
