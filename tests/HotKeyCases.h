#pragma once

#include "platform/HotKeyEvents.h"
#include "tests/Test.h"

namespace varno {

/// Hot keys, and somebody at the keyboard, who types Option, Command and F.
struct HotKeyDesk {
    HotKeyEvents& events;
    std::function<void()> type;
    std::function<void(bool)> takeForAnother; ///< that combination, or gives it back
};

inline void verifyHotKeys(const HotKeyDesk& desk)
{
    constexpr int f = 3;
    constexpr int optionCommand = 2304;
    const QList<quint32> both = {hotKeyPressed, hotKeyReleased};
    QList<quint32> kinds;
    QList<quint32> ids;
    desk.events.installHandler([&](const HotKeyEvent& event) {
        kinds << event.kind;
        ids << event.identity.id;
        return event.parameterStatus;
    });
    desk.takeForAnother(true);
    QVERIFY(!desk.events.registerHotKey(f, optionCommand, {.signature = 1, .id = 16}));
    desk.takeForAnother(false);
    const auto reference = desk.events.registerHotKey(f, optionCommand, {.signature = 1, .id = 17});
    QVERIFY(reference);
    const auto add = [&] { desk.events.addEventTypes(HotKeyEvents::hotKeyEvents); };
    const auto pause = [&] { desk.events.removeEventTypes(HotKeyEvents::hotKeyEvents); };
    const auto forget = [&] { desk.events.unregisterHotKey(*reference); };
    for (const auto& [name, step, isHeard] :
         Rows<const char*, std::function<void()>, bool>{{"no types yet", [] {}, false},
                                                        {"added", add, true},
                                                        {"added again", add, true},
                                                        {"paused", pause, false},
                                                        {"resumed", add, true},
                                                        {"unregistered", forget, false},
                                                        {"unregistered again", forget, false}}) {
        const InRow row(name);
        kinds.clear();
        step();
        desk.type();
        if (isHeard)
            QTRY_COMPARE(kinds, both);
        QCOMPARE(kinds, isHeard ? both : QList<quint32>());
    }
    QCOMPARE(ids, QList<quint32>(6, 17));
    desk.events.installHandler({});
}

} // namespace varno
