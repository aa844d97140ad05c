#pragma once

#include <chrono>
#include <functional>

class QWidget;

namespace varno {

class AnimationSetting;

/// A number that goes from one value to another, slowly at both ends.
struct Motion {
    double from = 0;
    double to = 1;
    std::chrono::milliseconds duration{250};
    std::chrono::milliseconds delay{0}; ///< spent at `from`, once
    enum class Repeat { never, backAndForth } repeat = Repeat::never;
};

/// Moves a number on behalf of a widget. The only means of animation there is.
///
/// It moves only while the widget can be seen: nothing runs while the widget, one of its ancestors
/// or its window is hidden or minimised, and it goes on from there when it is shown. Where
/// the desktop wants no animations it is at its end at once, and one that repeats stays at its
/// start.
///
///     Animation m_pulse{*this, [this](double opacity) { setOpacity(opacity); }};
///     m_pulse.start({.from = 0.5, .to = 0.25, .duration = 900ms,
///                    .repeat = Motion::Repeat::backAndForth});
class Animation {
public:
    /// `apply` is called with each value, on the main thread, the first time from within `start`.
    /// It may destroy the widget and the animation.
    Animation(QWidget& widget, std::function<void(double)> apply);
    /// With another setting than the desktop's. It must outlive the animation.
    Animation(QWidget& widget, std::function<void(double)> apply, AnimationSetting& setting);
    /// Ends it where it is; `apply` is not called again. The widget may be gone by then.
    ~Animation();
    Animation(const Animation&) = delete;
    Animation& operator=(const Animation&) = delete;

    /// Begins anew. A widget that is not shown yet is at `from` until it is.
    void start(const Motion& motion);
    /// Ends it where it is.
    void stop();

    /// Whether it was started and has not come to its end; one that repeats never does.
    [[nodiscard]] bool isActive() const;
    /// Whether it moves at this moment.
    [[nodiscard]] bool isMoving() const;

private:
    class Clock;
    Clock* m_clock; ///< owned; outlives this object if it ends during a call of `apply`
};

} // namespace varno
