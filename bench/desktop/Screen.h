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
class Screen final : public XDesktop {
public:
    /// Puts up the backdrop. The server has 24 bits for a pixel.
    Screen();

    /// Alt+Super+F, pressed and lifted like by a hand; the modifiers stay down until
    /// `liftModifiers`.
    struct Times {
        Clock::time_point pressed;
        Clock::time_point lifted;
    };
    Times strike();

    /// When the line had that many colours besides the backdrop's, or none if `count` is 0. Nothing
    /// after three seconds.
    [[nodiscard]] std::optional<Clock::time_point> waitForColors(std::size_t count) const;

private:
    /// How many colours the line has besides the backdrop's; up to `most` are counted.
    [[nodiscard]] std::size_t colors(std::size_t most) const;
};

} // namespace varno::bench
