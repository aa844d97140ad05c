#include "kit/Theme.h"

#include <QApplication>
#include <QToolTip>
#include <QWidget>

#include <array>

namespace varno {
namespace {

QColor opaque(ColorRole role, AppTheme theme)
{
    const RgbColor rgb = color(role, theme);
    return {rgb.red, rgb.green, rgb.blue};
}

QColor withOpacity(QColor color, double opacity)
{
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

/// `over` laid on `under` with that opacity, as one opaque colour.
QColor blended(const QColor& under, const QColor& over, double opacity)
{
    const auto mixed = [opacity](int from, int to) { return qRound(from + (to - from) * opacity); };
    return {mixed(under.red(), over.red()), mixed(under.green(), over.green()),
            mixed(under.blue(), over.blue())};
}

QPalette::ColorRole paletteRole(ColorRole role)
{
    constexpr std::array roles = {QPalette::Window, QPalette::AlternateBase, QPalette::Mid,
                                  QPalette::WindowText, QPalette::Link};
    return roles[static_cast<std::size_t>(role)];
}

/// The theme that a palette was made for.
std::size_t themeOf(const QPalette& palette)
{
    const QColor background = themeColor(palette, ColorRole::background);
    for (const AppTheme theme : {AppTheme::amber, AppTheme::dark})
        if (background == opaque(ColorRole::background, theme))
            return static_cast<std::size_t>(theme);
    return static_cast<std::size_t>(AppTheme::cream);
}

void setColors(QPalette& palette, std::initializer_list<QPalette::ColorRole> roles,
               const QColor& color)
{
    for (const QPalette::ColorRole role : roles)
        palette.setColor(role, color);
}

} // namespace

QPalette themePalette(AppTheme theme)
{
    const QColor background = opaque(ColorRole::background, theme);
    const QColor surface = opaque(ColorRole::surface, theme);
    const QColor border = opaque(ColorRole::border, theme);
    const QColor text = opaque(ColorRole::text, theme);
    const QColor accent = opaque(ColorRole::accent, theme);
    using P = QPalette;
    QPalette palette;
    setColors(palette, {P::Window, P::Base}, background);
    setColors(palette, {P::AlternateBase, P::Button, P::Light, P::Midlight, P::ToolTipBase},
              surface);
    setColors(palette, {P::Mid, P::Dark, P::Shadow}, border);
    setColors(
        palette,
        {P::WindowText, P::Text, P::ButtonText, P::BrightText, P::ToolTipText, P::HighlightedText},
        text);
    setColors(palette, {P::Link, P::LinkVisited}, accent);
    palette.setColor(P::Highlight, withOpacity(accent, 0.3)); // what is behind it can be seen
    palette.setColor(P::PlaceholderText, withOpacity(text, 0.7));
    for (const P::ColorRole role : {P::Text, P::ButtonText})
        palette.setColor(P::Disabled, role, blended(background, text, 0.4));
    return palette;
}

QColor themeColor(const QPalette& palette, ColorRole role, double opacity)
{
    return withOpacity(palette.color(QPalette::Active, paletteRole(role)), opacity);
}

QColor standardColor(const QPalette& palette, StandardColor color, double opacity)
{
    // Texts in them have a contrast of 4.5 to 1 and more, at the opacities that they are used with.
    constexpr std::array<std::array<QRgb, 3>, 5> colors = {{
        // cream    amber     dark
        {0xFFCC00, 0xFFCC00, 0xFFD60A}, // yellow
        {0x8A0000, 0x5C0000, 0xFF9085}, // red
        {0xB04600, 0x9C3A00, 0xFF9F0A}, // orange
        {0x0F5524, 0x0B4A1E, 0x30D158}, // green
        {0x000000, 0x000000, 0xFFFFFF}, // primary
    }};
    return withOpacity(QColor(colors[static_cast<std::size_t>(color)][themeOf(palette)]), opacity);
}

QColor inkColor(const QPalette& palette, const Ink& ink)
{
    if (const auto* role = std::get_if<ColorRole>(&ink.role))
        return themeColor(palette, *role, ink.opacity);
    return standardColor(palette, std::get<StandardColor>(ink.role), ink.opacity);
}

void setTheme(QWidget& window, AppTheme theme)
{
    const QPalette palette = themePalette(theme);
    window.setPalette(palette);
    QToolTip::setPalette(palette);
}

} // namespace varno
