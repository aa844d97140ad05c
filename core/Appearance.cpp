#include "core/Appearance.h"

namespace varno {
namespace {

constexpr std::array<std::array<QStringView, 3>, 5> palette = {{
    // cream     amber       dark
    {u"#F5ECD7", u"#E8D5A3", u"#2A2218"}, // background
    {u"#EDE0C4", u"#D9C480", u"#1E1810"}, // surface
    {u"#C4A882", u"#A08040", u"#5A4830"}, // border
    {u"#2C1810", u"#2C1810", u"#E8D5A3"}, // text
    {u"#2D5016", u"#2D5016", u"#8FBE5A"}, // accent
}};

QStringView trimmedToLettersAndDigits(QStringView text)
{
    while (!text.isEmpty() && !text.front().isLetterOrNumber())
        text = text.sliced(1);
    while (!text.isEmpty() && !text.back().isLetterOrNumber())
        text.chop(1);
    return text;
}

} // namespace

RgbColor hex(QStringView text)
{
    const quint64 number = trimmedToLettersAndDigits(text).toULongLong(nullptr, 16);
    return {.red = static_cast<quint8>(number >> 16U),
            .green = static_cast<quint8>(number >> 8U),
            .blue = static_cast<quint8>(number)};
}

RgbColor color(ColorRole role, AppTheme theme)
{
    return hex(palette[static_cast<std::size_t>(role)][static_cast<std::size_t>(theme)]);
}

} // namespace varno
