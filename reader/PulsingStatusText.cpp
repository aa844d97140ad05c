#include "reader/PulsingStatusText.h"

namespace varno {

using namespace std::chrono_literals;

namespace {

constexpr double brightOpacity = 0.5;
constexpr double dimOpacity = 0.25;

} // namespace

PulsingStatusText::PulsingStatusText(const QString& text, ColorRole color, QWidget* parent)
    : ThemedText(text, {.size = 13, .role = color, .opacity = brightOpacity}, Overflow::elide,
                 parent)
    , m_pulse(*this, [this](double opacity) { setOpacity(opacity); })
{
    m_pulse.start({.from = brightOpacity,
                   .to = dimOpacity,
                   .duration = 900ms,
                   .repeat = Motion::Repeat::backAndForth});
}

} // namespace varno
