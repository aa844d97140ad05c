#include "reader/LoadingPlaceholders.h"

#include "kit/Layout.h"
#include "kit/RoundedShape.h"
#include "kit/Theme.h"

#include <QPainter>

#include <array>

namespace varno {

using namespace std::chrono_literals;

namespace {

constexpr int barCount = 6;
constexpr int barHeight = 10;
constexpr double cornerRadius = 3;
constexpr std::array shimmerWidths = {104, 76, 92, 108, 68};

constexpr double paleOpacity = 0.3;
constexpr double strongOpacity = 0.7;

} // namespace

PlaceholderBar::PlaceholderBar(int width, QWidget* parent)
    : QWidget(parent)
    , m_width(width)
    , m_opacity(paleOpacity)
    , m_pulse(*this, [this](double opacity) {
        m_opacity = opacity;
        update();
    })
{
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

void PlaceholderBar::pulse(std::chrono::milliseconds delay)
{
    m_pulse.start({.from = paleOpacity,
                   .to = strongOpacity,
                   .duration = 900ms,
                   .delay = delay,
                   .repeat = Motion::Repeat::backAndForth});
}

QSize PlaceholderBar::sizeHint() const
{
    return {m_width, barHeight};
}

void PlaceholderBar::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    fillRounded(painter, rect(), cornerRadius, themeColor(palette(), ColorRole::border, m_opacity));
}

LoadingPlaceholders::LoadingPlaceholders(QWidget* parent)
    : QWidget(parent)
{
    QBoxLayout* bars = column({.spacing = 10, .horizontal = 16}, {});
    for (std::size_t i = 0; i < barCount; ++i) {
        m_bars.append(new PlaceholderBar(shimmerWidths[i % shimmerWidths.size()]));
        aligned(*m_bars.constLast(), Qt::AlignLeading).addTo(*bars);
    }
    bars->addStretch();
    setLayout(bars);
    setAccessibleName(tr("Loading the contents"));
}

void LoadingPlaceholders::start()
{
    std::chrono::milliseconds delay = 0ms;
    for (PlaceholderBar* bar : std::as_const(m_bars)) {
        bar->pulse(delay);
        delay += 120ms;
    }
}

} // namespace varno
