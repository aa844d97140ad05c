#pragma once

#include "bench/desktop/StatusWatcher.h"

#include <xcb/xcb.h>

#include <chrono>
#include <memory>
#include <optional>

namespace varno::bench {

/// Keys of an X server that are pressed together, the last of them by name.
struct Combination {
    static constexpr xcb_keycode_t alt = 64;
    static constexpr xcb_keycode_t super = 133;
    static constexpr xcb_keycode_t f = 41; // all three by evdev's count
    static constexpr int modifiers = XCB_MOD_MASK_1 | XCB_MOD_MASK_4;
};

/// The X server as a user has it: keys that are pressed, and a screen that is looked at. Nothing of
/// it goes through the toolkit.
///
/// It looks at a line one pixel wide, from the top of the screen to its foot through its middle,
/// where every window of the size of a panel is. What lies there is a backdrop of a colour that no
/// program paints.
class Screen {
public:
    /// Puts up the backdrop. Whether there is a server that can do all this: `isUsable`.
    Screen();

    [[nodiscard]] bool isUsable() const { return m_isUsable; }

    /// Alt+Super+F, pressed and lifted like by a hand; the modifiers stay down until
    /// `liftModifiers`.
    struct Times {
        Clock::time_point pressed;
        Clock::time_point lifted;
    };
    [[nodiscard]] Times strike();
    void liftModifiers();

    /// When the line had that many colours besides the backdrop's. Nothing after `patience`.
    [[nodiscard]] std::optional<Clock::time_point>
    waitForColors(std::size_t count, std::chrono::milliseconds patience);

    /// Whether the line showed the backdrop alone before `patience` was over.
    [[nodiscard]] bool waitForBackdrop(std::chrono::milliseconds patience);

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    /// How many colours the line has besides the backdrop's; up to `most` are counted.
    [[nodiscard]] std::optional<std::size_t> colors(std::size_t most) const;
    void fakeKey(quint8 type, xcb_keycode_t key);

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    const xcb_screen_t* m_screen = nullptr;
    bool m_isUsable = false;
};

} // namespace varno::bench
