#include "kit/Animation.h"

#include "platform/Platform.h"

#include <QAbstractAnimation>
#include <QEasingCurve>
#include <QEvent>
#include <QPointer>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <utility>

namespace varno {
namespace {

using namespace std::chrono_literals;

double eased(double progress)
{
    static const QEasingCurve curve = [] {
        QEasingCurve inOut(QEasingCurve::BezierSpline);
        inOut.addCubicBezierSegment({0.42, 0}, {0.58, 1}, {1, 1});
        return inOut;
    }();
    return curve.valueForProgress(progress);
}

double valueAt(const Motion& motion, std::chrono::milliseconds time)
{
    const double elapsed = static_cast<double>(std::max(time - motion.delay, 0ms).count());
    const double duration = static_cast<double>(std::max(motion.duration, 1ms).count());
    double progress = elapsed / duration;
    if (motion.repeat == Motion::Repeat::backAndForth)
        progress = 1 - std::abs(std::fmod(progress, 2) - 1);
    return motion.from + (motion.to - motion.from) * eased(std::min(progress, 1.0));
}

} // namespace

/// All clocks tick together, with Qt's one timer for animations, which rests while all of them are
/// paused or stopped.
class Animation::Clock final : public QAbstractAnimation {
public:
    Clock(QWidget& widget, std::function<void(double)> apply, AnimationSetting& setting);

    void begin(const Motion& motion);
    void end();
    /// Ends it and destroys it, from within `apply` too.
    void abandon();

    [[nodiscard]] bool isActive() const { return m_standsStill || state() != Stopped; }
    [[nodiscard]] int duration() const override;

protected:
    void updateCurrentTime(int milliseconds) override;
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void applySetting(bool animationsEnabled);
    void standStill();
    void call(double value);

    QPointer<QWidget> m_widget;
    std::function<void(double)> m_apply;
    AnimationSetting& m_setting;
    Motion m_motion;
    bool m_standsStill = false;
    bool m_calling = false;
};

Animation::Clock::Clock(QWidget& widget, std::function<void(double)> apply,
                        AnimationSetting& setting)
    : m_widget(&widget)
    , m_apply(std::move(apply))
    , m_setting(setting)
{
    widget.installEventFilter(this);
    connect(&widget, &QObject::destroyed, this, &Clock::end);
    connect(&setting, &AnimationSetting::changed, this, &Clock::applySetting);
}

void Animation::Clock::begin(const Motion& motion)
{
    end();
    if (!m_widget)
        return;
    m_motion = motion;
    if (!m_setting.isEnabled()) {
        standStill();
        return;
    }
    QAbstractAnimation::start();
    const bool seen = m_widget && m_widget->isVisible() && !m_widget->window()->isMinimized();
    if (!seen && state() == Running)
        pause();
}

void Animation::Clock::end()
{
    m_standsStill = false;
    QAbstractAnimation::stop();
}

void Animation::Clock::abandon()
{
    end();
    disconnect(&m_setting, nullptr, this, nullptr);
    if (m_widget)
        m_widget->removeEventFilter(this);
    if (m_calling)
        deleteLater();
    else
        delete this;
}

int Animation::Clock::duration() const
{
    if (m_motion.repeat == Motion::Repeat::backAndForth)
        return -1;
    return static_cast<int>((m_motion.delay + m_motion.duration).count());
}

void Animation::Clock::updateCurrentTime(int milliseconds)
{
    call(valueAt(m_motion, std::chrono::milliseconds(milliseconds)));
}

bool Animation::Clock::eventFilter(QObject*, QEvent* event)
{
    // These come for hidden ancestors too, and, as spontaneous ones, for a minimised window.
    if (event->type() == QEvent::Hide && state() == Running)
        pause();
    else if (event->type() == QEvent::Show && state() == Paused)
        resume();
    return false;
}

void Animation::Clock::applySetting(bool animationsEnabled)
{
    if (!animationsEnabled && state() != Stopped) {
        end();
        standStill();
    } else if (animationsEnabled && m_standsStill) {
        begin(Motion(m_motion));
    }
}

void Animation::Clock::standStill()
{
    m_standsStill = m_motion.repeat == Motion::Repeat::backAndForth;
    call(m_standsStill ? m_motion.from : m_motion.to);
}

void Animation::Clock::call(double value)
{
    const bool outerCall = std::exchange(m_calling, true);
    m_apply(value);
    m_calling = outerCall;
}

Animation::Animation(QWidget& widget, std::function<void(double)> apply)
    : Animation(widget, std::move(apply), systemAnimationSetting())
{
}

Animation::Animation(QWidget& widget, std::function<void(double)> apply, AnimationSetting& setting)
    : m_clock(new Clock(widget, std::move(apply), setting))
{
}

Animation::~Animation()
{
    m_clock->abandon();
}

void Animation::start(const Motion& motion)
{
    m_clock->begin(motion);
}

void Animation::stop()
{
    m_clock->end();
}

bool Animation::isActive() const
{
    return m_clock->isActive();
}

bool Animation::isMoving() const
{
    return m_clock->state() == QAbstractAnimation::Running;
}

} // namespace varno
