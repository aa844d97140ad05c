#pragma once

#include "tests/XDesktop.h"

#include <chrono>
#include <optional>

namespace varno::bench {

using Clock = std::chrono::steady_clock;

/// The X server as a user has it: keys that are pressed, and a screen that is looked at.
///
/// It looks at a line one pixel wide, from the top of the screen to its foot through its middle,
/// where every window of the size of a panel is. What lies there is a backdrop of a colour that no
/// program paints.
class Screen {
public:
    /// Puts up the backdrop. The server has 24 bits for a pixel.
    Screen();

    /// Alt+Super+F, pressed and lifted like by a hand; the modifiers stay down until
    /// `liftModifiers`.
    struct Times {
        Clock::time_point pressed;
        Clock::time_point lifted;
    };
    [[nodiscard]] Times strike();
    void liftModifiers() { m_desktop.liftModifiers(); }

    /// When the line had that many colours besides the backdrop's, or none if `count` is 0. Nothing
    /// after `longest`.
    [[nodiscard]] std::optional<Clock::time_point>
    waitForColors(std::size_t count, std::chrono::milliseconds longest) const;

private:
    /// How many colours the line has besides the backdrop's; up to `most` are counted.
    [[nodiscard]] std::size_t colors(std::size_t most) const;

    XDesktop m_desktop;
};

} // namespace varno::bench
