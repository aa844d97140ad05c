#pragma once

#include <chrono>
#include <functional>

class QWidget;

namespace varno {

class AnimationSetting;

/// A change of a number from one value to another, eased at both ends.
struct Motion {
    double from = 0;
    double to = 1;
    std::chrono::milliseconds duration{250};
    std::chrono::milliseconds delay{0}; ///< spent at `from`, once
    enum class Repeat { never, backAndForth } repeat = Repeat::never;
};

/// Animates a number on behalf of a widget. Nothing else in the program animates.
///
/// It runs only while the widget can be seen: it pauses while the widget, one of its ancestors or
/// its window is hidden or minimised, and resumes when that is shown. Where the desktop wants no
/// animations it ends at once, and one that repeats stays at its start.
///
///     Animation m_pulse{*this, [this](double opacity) { setOpacity(opacity); }};
///     m_pulse.start({.from = 0.5, .to = 0.25, .duration = 900ms,
///                    .repeat = Motion::Repeat::backAndForth});
class Animation {
public:
    /// `apply` is called with each value, on the main thread, the first time from within `start`.
    /// It may destroy the widget and the animation.
    Animation(QWidget& widget, std::function<void(double)> apply);
    /// Follows `setting`, which outlives the animation, in place of the desktop's.
    Animation(QWidget& widget, std::function<void(double)> apply, AnimationSetting& setting);
    /// Stops it; `apply` is not called again. The widget may be gone by then.
    ~Animation();
    Animation(const Animation&) = delete;
    Animation& operator=(const Animation&) = delete;

    /// Starts anew. The value stays at `from` until the widget is shown.
    void start(const Motion& motion);
    /// Stops it at the value that it has.
    void stop();

    /// Whether it was started and has not ended; one that repeats never ends.
    [[nodiscard]] bool isActive() const;
    /// Whether it runs: it is active and not paused.
    [[nodiscard]] bool isMoving() const;

private:
    class Clock;
    Clock* m_clock; ///< owned; outlives this object if it ends during a call of `apply`
};

} // namespace varno
