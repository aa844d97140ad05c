#include "app/FontSizeControl.h"

#include "kit/Layout.h"
#include "kit/RoundedShape.h"

#include <QPainter>

namespace varno {
namespace {

constexpr double radius = 6; // of the corners
constexpr double outlineWidth = 1;

ButtonStyle segmentStyle(bool selected)
{
    const Ink label =
        selected ? Ink{.role = ColorRole::accent} : Ink{.role = ColorRole::text, .opacity = 0.65};
    return {
        .text = {.size = 12, .role = label.role, .opacity = label.opacity},
        .horizontal = 14,
        .vertical = 5,
    };
}

} // namespace

FontSizeControl::FontSizeControl(QWidget* parent)
    : QWidget(parent)
    , m_segments{PlainButton(tr("Small")), PlainButton(tr("Medium")), PlainButton(tr("Large"))}
    , m_dividers{Rule(Qt::Vertical), Rule(Qt::Vertical)}
{
    setLayout(row({}, {
                          m_segments[0],
                          m_dividers[0],
                          m_segments[1],
                          m_dividers[1],
                          m_segments[2],
                      }));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(tr("Font Size"));
    for (std::size_t i = 0; i < m_segments.size(); ++i) {
        m_segments[i].setButtonStyle(segmentStyle(false));
        m_segments[i].setCheckable(true);
        m_segments[i].setAutoExclusive(true);
        connect(&m_segments[i], &PlainButton::clicked, this,
                [this, i] { Q_EMIT fontSizePressed(static_cast<FontSize>(i)); });
    }
}

void FontSizeControl::setFontSize(FontSize size)
{
    for (std::size_t i = 0; i < m_segments.size(); ++i) {
        const bool selected = static_cast<std::size_t>(size) == i;
        m_segments[i].setChecked(selected);
        m_segments[i].setButtonStyle(segmentStyle(selected));
    }
    update();
}

void FontSizeControl::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    clipRounded(painter, rect(), radius, outlineWidth);
    for (const PlainButton& segment : m_segments)
        if (segment.isChecked())
            painter.fillRect(segment.geometry(), themeColor(palette(), ColorRole::accent, 0.12));
    painter.setClipping(false);
    outlineRounded(painter, rect(), radius, outlineWidth, themeColor(palette(), ColorRole::border));
}

} // namespace varno
