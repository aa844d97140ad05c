#include "platform/CarbonModifiers.h"
#include "platform/Key.h"
#include "platform/KeyLabel.h"
#include "platform/macos/CarbonHotKeyEvents.h"
#include "platform/macos/CarbonKeyboard.h"
#include "platform/macos/CoreFoundationValues.h"
#include "platform/macos/DefaultsPreferencesStore.h"
#include "platform/macos/KeychainKeyStore.h"
#include "shortcuts/HotKeyCenter.h"
#include "tests/HotKeyCases.h"
#include "tests/KeyStoreCases.h"
#include "tests/PreferencesCases.h"
#include "tests/macos/Imitation.h"

using namespace varno::imitation;

namespace {

const Shortcut optionCommandF(Key::f, Modifier::option | Modifier::command);
const auto system13 = QOperatingSystemVersion(QOperatingSystemVersion::MacOS, 13, 6);
const auto system15 = QOperatingSystemVersion(QOperatingSystemVersion::MacOS, 15, 1);

QByteArray attributes(const QString& rest)
{
    return u"[class=generic service=com.kelbrin.varno account=anthropic-api-key%1]"_s.arg(rest)
        .toUtf8();
}

} // namespace

/// The backends for macOS that speak C, on imitations of its services.
class MacBackendsTest : public QObject {
    Q_OBJECT

private:
    KeychainKeyStore m_store;
    const KeyName m_name{.service = u"com.kelbrin.varno"_s, .account = u"anthropic-api-key"_s};
    const KeyStoreDesk m_desk{
        .store = m_store,
        .itemCount =
            [] { return std::ranges::count(keychain().items, anthropic, &Keychain::Item::name); },
        .lock = [] { keychain().isLocked = true; },
        .unlock = [] { keychain().isLocked = false; },
        .meetUser =
            [](KeyStoreDesk::User user) {
                keychain().user = static_cast<Keychain::User>(user);
                return [before = keychain().asked.load()] { return keychain().asked - before; };
            },
    };
    inline static const QString anthropic = u"com.kelbrin.varno/anthropic-api-key"_s;
    int m_valuesBefore = 0;

    static MakePreferences opener()
    {
        return [] { return std::make_unique<DefaultsPreferencesStore>(); };
    }

private Q_SLOTS:
    void init()
    {
        eventManager() = {};
        keychain().reset();
        preferences().reset();
        m_valuesBefore = livingValues();
    }

    void cleanup()
    {
        keychain().reset();
        preferences().reset();
        QTRY_COMPARE(livingValues(), m_valuesBefore); // all is released
    }

    void hotKeys()
    {
        CarbonHotKeyEvents events;
        verifyHotKeys({.events = events,
                       .type = [] { eventManager().type(3, 2304); },
                       .takeForAnother =
                           [](bool taken) {
                               eventManager().taken.clear();
                               if (taken)
                                   eventManager().taken.insert({3, 2304});
                           }});
    }

    void hotKeyCallsInTheirOrder()
    {
        auto events = std::make_unique<CarbonHotKeyEvents>();
        {
            HotKeyCenter center(*events, system13);
            eventManager().taken = {{5, 256}};
            QVERIFY(!center.add(Shortcut(5, 256), {}));
            QVERIFY(eventManager().calls.size() == 1); // no handler without a hot key
            QVERIFY(center.add(optionCommandF, {}));
            center.setPaused(true);
            center.setPaused(false);
            QCOMPARE(eventManager().hotKeys.size(), 1U);
            center.remove(optionCommandF);
        }
        events.reset();
        QCOMPARE(eventManager().calls.join(u'\n'), u"RegisterEventHotKey 5 256 53534b53 1 0\n"
                                                   "RegisterEventHotKey 3 2304 53534b53 2 0\n"
                                                   "InstallEventHandler \n"
                                                   "AddEventTypesToHandler 5 6 1 3\n"
                                                   "RemoveEventTypesFromHandler 5 6 1 3\n"
                                                   "AddEventTypesToHandler 5 6 1 3\n"
                                                   "UnregisterEventHotKey\n"
                                                   "RemoveEventTypesFromHandler 5 6 1 3\n"
                                                   "RemoveEventHandler "_s);
        QVERIFY(eventManager().hotKeys.empty());
    }

    void hotKeyEvents()
    {
        constexpr UInt32 ours = 0x53534B53;
        constexpr UInt32 capsLock = 0x400;
        CarbonHotKeyEvents events;
        HotKeyCenter center(events, system13);
        int presses = 0;
        int releases = 0;
        QVERIFY(center.add(optionCommandF,
                           {.keyDown = [&] { ++presses; }, .keyUp = [&] { ++releases; }}));
        const auto key = [](UInt32 code, UInt32 modifiers) {
            return EventManager::Parameters{{kEventParamKeyCode, {code}},
                                            {kEventParamKeyModifiers, {modifiers}}};
        };
        const auto hotKey = [](UInt32 signature, UInt32 id) {
            return EventManager::Parameters{{kEventParamDirectObject, {signature, id}}};
        };
        eventManager().kinds.insert(7);
        for (const auto& [kind, parameters, status, result] :
             Rows<UInt32, EventManager::Parameters, OSStatus, int>{
                 {5, hotKey(ours, 1), 0, 10},
                 {6, hotKey(ours, 1), 0, 1},
                 {7, hotKey(ours, 1), -9874, 0},
                 {5, hotKey(ours + 1, 1), -9874, 0},
                 {5, hotKey(ours, 2), -9874, 0},
                 {5, {}, eventParameterNotFoundErr, 0},
                 {1, key(3, 2304 | capsLock), 0, 10},
                 {3, key(3, 2304), 0, 1},
                 {1, key(3, 256), -9874, 0},
                 {1, {{kEventParamKeyCode, {3}}}, eventParameterNotFoundErr, 0}}) {
            const InRow row(kind, status, result);
            presses = releases = 0;
            QCOMPARE(eventManager().send(kind, parameters), status);
            QCOMPARE(10 * presses + releases, result);
        }
    }

    void rawKeysOfOlderSystemsOnly()
    {
        CarbonHotKeyEvents events;
        HotKeyCenter center(events, system15);
        QVERIFY(center.add(optionCommandF, {}));
        QCOMPARE(eventManager().kinds, std::set<UInt32>({5, 6}));
    }

    void reservedHotKeys()
    {
        CarbonHotKeyEvents events;
        QVERIFY(!events.isReserved(49, 256)); // a system that says nothing
        const CFOwned<CFTypeRef> space(number(49));
        const CFOwned<CFTypeRef> command(number(256));
        const CFOwned<CFTypeRef> control(number(4096));
        const auto entry = [](CFTypeRef enabled, CFTypeRef code, CFTypeRef modifiers) {
            return cfDictionary({{kHISymbolicHotKeyEnabled, enabled},
                                 {kHISymbolicHotKeyCode, code},
                                 {kHISymbolicHotKeyModifiers, modifiers}});
        };
        const std::array owned = {cfDictionary({}),
                                  entry(command.get(), CFSTR("49"), kCFBooleanTrue),
                                  entry(kCFBooleanFalse, space.get(), control.get()),
                                  entry(kCFBooleanTrue, space.get(), command.get())};
        std::vector<const void*> entries = {CFSTR("no dictionary")};
        for (const auto& each : owned)
            entries.push_back(each.get());
        const CFOwned<CFArrayRef> list(CFArrayCreate(nullptr, entries.data(), 5, nullptr));
        eventManager().symbolicHotKeys = list.get();
        for (const auto& [code, modifiers, reserved] : Rows<int, int, bool>{
                 {49, 256, true}, {49, 4096, false}, {49, 768, false}, {3, 256, false}})
            QCOMPARE(events.isReserved(code, modifiers), reserved);
    }

    void keyboard()
    {
        CarbonKeyboard keyboard;
        const QSignalSpy changes(&keyboard, &Keyboard::layoutChanged);
        layout().change({{3, u"f"_s}, {6, u"y"_s}, {36, u"\r"_s}, {10, u"ß"_s}});
        QCOMPARE(changes.size(), 1);
        for (const auto& [code, character, label] :
             Rows<int, QString, QString>{{3, u"f"_s, u"F"_s},
                                         {6, u"y"_s, u"Y"_s},
                                         {36, u""_s, u"↩"_s},
                                         {10, u"ß"_s, u"ß"_s},
                                         {0, u""_s, u"A"_s}}) {
            QCOMPARE(keyboard.character(code), character);
            QCOMPARE(characterLabel(code, keyboard), label);
        }
        layout().isUnicode = false;
        QCOMPARE(characterLabel(6, keyboard), u"Z"_s);
        layout().isUnicode = true;

        for (const auto& [key, code] : Rows<NativeKey, std::optional<int>>{
                 {NativeKey{.virtualKey = 0, .key = Qt::Key_A}, 0},
                 {NativeKey{.virtualKey = 53, .key = Qt::Key_Escape}, 53},
                 {NativeKey{.virtualKey = 0, .key = Qt::Key_Control}, {}},
                 {NativeKey{.virtualKey = 0, .key = Qt::Key_Shift}, {}},
                 {NativeKey{.virtualKey = 0xFFFF, .key = Qt::Key_A}, {}}})
            QCOMPARE(keyboard.carbonKeyCode(key), code);
        QCOMPARE(keyboard.carbonModifiers(Qt::ControlModifier | Qt::AltModifier),
                 carbonModifier::command | carbonModifier::option);
        QCOMPARE(keyboard.carbonModifiers(Qt::MetaModifier | Qt::ShiftModifier),
                 carbonModifier::control | carbonModifier::shift);
    }

    void keysAreKept() { verifyKeysAreKeptAsTheyAre(m_desk); }

    void withoutLeaveNothingChanges() { verifyNothingChangesWithoutLeave(m_desk); }

    void waitCanBeStopped() { verifyWaitHoldsUpNobodyAndCanBeStopped(m_desk); }

    void keychainCallsInTheirOrder()
    {
        m_store.replace(m_name, "key", {});
        QCOMPARE(m_store.find(m_name, {}), std::optional<QByteArray>("key"));
        QCOMPARE(m_store.look(m_name, {}).state, KeyGlance::State::open);
        m_store.remove(m_name, {});
        const QString find = u" return=true limit=one"_s;
        QCOMPARE(keychain().calls.join(u'\n').toUtf8(),
                 "SecItemDelete " + attributes({}) + "\nSecItemAdd " +
                     attributes(u" data=bytes:6b6579 accessible=after first unlock"_s) +
                     "\nSecItemCopyMatching " + attributes(find) + "\nSecItemCopyMatching " +
                     attributes(find + u" dialog=fail"_s) + "\nSecItemDelete " + attributes({}));
    }

    void refusals()
    {
        using State = KeyGlance::State;
        keychain().items.push_back({.name = anthropic, .data = number(1)}); // no bytes
        QCOMPARE(m_store.find(m_name, {}), std::nullopt);
        QCOMPARE(m_store.look(m_name, {}).state, State::absent);
        m_store.replace(m_name, "key", {});
        for (const auto& [status, state] :
             Rows<OSStatus, State>{{errSecAuthFailed, State::locked},
                                   {errSecUserCanceled, State::locked},
                                   {errSecInteractionRequired, State::locked},
                                   {-25291, State::unreachable}}) {
            const InRow row(status);
            keychain().failure = status;
            QCOMPARE(m_store.find(m_name, {}), std::nullopt);
            QCOMPARE(m_store.look(m_name, {}).state, state);
            m_store.replace(m_name, "new", {});
            m_store.remove(m_name, {});
            keychain().failure = errSecSuccess;
            QCOMPARE(m_store.find(m_name, {}), std::optional<QByteArray>("key"));
        }
    }

    void lists() { verifyListsAreKept(opener()); }

    void programsKeepWhatEachSets() { verifyProgramsKeepWhatEachSets(opener()); }

    void preferencesInTheShapesOfTheSystem()
    {
        DefaultsPreferencesStore store;
        store.setString(u"KeyboardShortcuts_openVarno"_s, u"{}"_s);
        store.setBoolean(u"KeyboardShortcuts_openVarno"_s, false);
        store.setStringArray(u"searchHistory"_s, {u"a"_s, u"b"_s});
        store.remove(u"searchHistory"_s);
        store.remove(u"never"_s);
        store.waitForDone();
        const QString domain = u"com.kelbrin.varno "_s;
        QCOMPARE(preferences().calls, QStringList({domain + u"KeyboardShortcuts_openVarno {}"_s,
                                                   domain + u"KeyboardShortcuts_openVarno false"_s,
                                                   domain + u"searchHistory [a b]"_s,
                                                   domain + u"searchHistory (none)"_s}));
    }

    void preferencesOfOtherTypes()
    {
        std::array<const void*, 2> elements = {CFSTR("a"), kCFBooleanTrue};
        const CFOwned<CFArrayRef> mixed(CFArrayCreate(nullptr, elements.data(), 2, nullptr));
        const CFOwned<CFTypeRef> one(number(1));
        preferences().set(u"number"_s, one.get());
        preferences().set(u"mixed"_s, mixed.get());
        preferences().set(u"text"_s, CFSTR("true"));
        preferences().set(u"switch"_s, kCFBooleanTrue);
        DefaultsPreferencesStore store;
        for (const QString& key : {u"number"_s, u"mixed"_s, u"text"_s, u"switch"_s}) {
            const InRow row(key);
            QVERIFY(store.contains(key));
            QCOMPARE(store.boolean(key).has_value(), key == u"switch");
            QCOMPARE(store.string(key).has_value(), key == u"text");
            QVERIFY(!store.stringArray(key));
        }
        preferences().isWritable = false;
        store.setString(u"number"_s, u"kept"_s);
        store.waitForDone();
        QCOMPARE(store.string(u"number"_s), u"kept"_s);
        preferences().isWritable = true;
        store.setBoolean(u"other"_s, true);
        store.waitForDone();
        QCOMPARE(described(preferences().values[u"number"_s]), u"kept"_s);
    }
};

VARNO_TEST(QCoreApplication, MacBackendsTest)
#include "MacBackendsTest.moc"
