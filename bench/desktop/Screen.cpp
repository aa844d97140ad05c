#include "bench/desktop/Screen.h"

#include <QCoreApplication>

#include <set>
#include <thread>

namespace varno::bench {
namespace {

using namespace std::chrono_literals;

constexpr quint32 backdrop = 0x13579B;
constexpr quint32 colorBits = 0xFFFFFF;

constexpr std::chrono::microseconds glance = 100us; // between two looks at the screen
constexpr std::chrono::milliseconds stroke = 40ms;  // how long a key is down
constexpr std::chrono::seconds longest = 3s;

} // namespace

Screen::Screen()
{
    xcb_change_window_attributes(connection(), root(), XCB_CW_BACK_PIXEL, &backdrop);
    xcb_clear_area(connection(), 0, root(), 0, 0, 0, 0);
    xcb_flush(connection());
}

Screen::Times Screen::strike()
{
    pressModifiers();
    std::this_thread::sleep_for(stroke);
    Times times;
    times.pressed = Clock::now();
    press(pcKey::f);
    std::this_thread::sleep_for(stroke);
    times.lifted = Clock::now();
    lift(pcKey::f);
    return times;
}

std::size_t Screen::colors(std::size_t most) const
{
    const QByteArray line =
        picture(root(), {screen().width_in_pixels / 2, 0, 1, screen().height_in_pixels});
    const auto* pixels = reinterpret_cast<const quint32*>(line.constData());
    std::set<quint32> found;
    for (int row = 0; row < screen().height_in_pixels && found.size() < most; ++row)
        if (const quint32 color = pixels[row] & colorBits; color != backdrop)
            found.insert(color);
    return found.size();
}

std::optional<Clock::time_point> Screen::waitForColors(std::size_t count) const
{
    for (const Clock::time_point end = Clock::now() + longest; Clock::now() < end;) {
        const std::size_t found = colors(count == 0 ? 1 : count);
        if (count == 0 ? found == 0 : found >= count)
            return Clock::now();
        QCoreApplication::processEvents(); // a program may wait for the status area
        std::this_thread::sleep_for(glance);
    }
    return std::nullopt;
}

} // namespace varno::bench
