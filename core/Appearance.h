#pragma once

#include "core/RawValue.h"

#include <QStringView>

namespace varno {

using namespace Qt::StringLiterals;

enum class AppTheme { cream, amber, dark };

template <>
struct RawValues<AppTheme> {
    static constexpr std::array<RawCase<AppTheme>, 3> cases = {{
        {AppTheme::cream, "cream"_L1},
        {AppTheme::amber, "amber"_L1},
        {AppTheme::dark, "dark"_L1},
    }};
};

enum class FontSize { small, medium, large };

template <>
struct RawValues<FontSize> {
    static constexpr std::array<RawCase<FontSize>, 3> cases = {{
        {FontSize::small, "small"_L1},
        {FontSize::medium, "medium"_L1},
        {FontSize::large, "large"_L1},
    }};
};

/// The base size of entry text, in points.
constexpr int pointSize(FontSize size)
{
    constexpr std::array sizes = {14, 16, 19};
    return sizes[static_cast<std::size_t>(size)];
}

/// An opaque sRGB colour.
struct RgbColor {
    quint8 red = 0;
    quint8 green = 0;
    quint8 blue = 0;

    constexpr bool operator==(const RgbColor&) const = default;
};

/// The colour that six hexadecimal digits name. What stands around the digits and is neither letter
/// nor digit, such as a leading "#", does not count; what is no number is black.
RgbColor hex(QStringView text);

enum class ColorRole {
    background, ///< the panel and the page
    surface,    ///< bars, the sidebar and other raised areas
    border,     ///< hairlines, dividers, outlines
    text,
    accent, ///< interactive and selected elements
};

RgbColor color(ColorRole role, AppTheme theme);

} // namespace varno
