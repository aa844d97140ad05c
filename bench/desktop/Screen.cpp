#include "bench/desktop/Screen.h"

#include "platform/linux/XcbReply.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <thread>
#include <vector>

namespace varno::bench {
namespace {

using namespace std::chrono_literals;

constexpr quint32 backdrop = 0x13579B;
constexpr quint32 colorBits = 0xFFFFFF;

constexpr std::chrono::microseconds glance = 100us; // between two looks at the screen
constexpr std::chrono::milliseconds stroke = 40ms;  // how long a key is down

} // namespace

Screen::Screen()
    : m_connection(xcb_connect(nullptr, nullptr))
{
    xcb_connection_t* server = m_connection.get();
    if (xcb_connection_has_error(server) != 0)
        return;
    m_screen = xcb_setup_roots_iterator(xcb_get_setup(server)).data;
    const xcb_query_extension_reply_t* xtest = xcb_get_extension_data(server, &xcb_test_id);
    m_isUsable = xtest && xtest->present != 0 && m_screen->root_depth == 24;
    xcb_change_window_attributes(server, m_screen->root, XCB_CW_BACK_PIXEL, &backdrop);
    xcb_clear_area(server, 0, m_screen->root, 0, 0, 0, 0);
    xcb_flush(server);
}

void Screen::fakeKey(quint8 type, xcb_keycode_t key)
{
    xcb_test_fake_input(m_connection.get(), type, key, XCB_CURRENT_TIME, m_screen->root, 0, 0, 0);
    xcb_flush(m_connection.get());
}

Screen::Times Screen::strike()
{
    fakeKey(XCB_KEY_PRESS, Combination::alt);
    fakeKey(XCB_KEY_PRESS, Combination::super);
    std::this_thread::sleep_for(stroke);
    Times times;
    times.pressed = Clock::now();
    fakeKey(XCB_KEY_PRESS, Combination::f);
    std::this_thread::sleep_for(stroke);
    times.lifted = Clock::now();
    fakeKey(XCB_KEY_RELEASE, Combination::f);
    return times;
}

void Screen::liftModifiers()
{
    fakeKey(XCB_KEY_RELEASE, Combination::super);
    fakeKey(XCB_KEY_RELEASE, Combination::alt);
}

std::optional<std::size_t> Screen::colors(std::size_t most) const
{
    xcb_connection_t* server = m_connection.get();
    const auto middle = static_cast<qint16>(m_screen->width_in_pixels / 2);
    const XcbReply<xcb_get_image_reply_t> image(
        xcb_get_image_reply(server,
                            xcb_get_image(server, XCB_IMAGE_FORMAT_Z_PIXMAP, m_screen->root, middle,
                                          0, 1, m_screen->height_in_pixels, ~0U),
                            nullptr));
    if (!image)
        return std::nullopt;
    const auto* pixels = reinterpret_cast<const quint32*>(xcb_get_image_data(image.get()));
    std::vector<quint32> found;
    for (int row = 0; row < m_screen->height_in_pixels && found.size() < most; ++row) {
        const quint32 color = pixels[row] & colorBits;
        if (color != backdrop && std::find(found.begin(), found.end(), color) == found.end())
            found.push_back(color);
    }
    return found.size();
}

std::optional<Clock::time_point> Screen::waitForColors(std::size_t count,
                                                       std::chrono::milliseconds patience)
{
    const Clock::time_point end = Clock::now() + patience;
    while (Clock::now() < end) {
        if (const auto found = colors(count); found && *found >= count)
            return Clock::now();
        std::this_thread::sleep_for(glance);
    }
    return std::nullopt;
}

bool Screen::waitForBackdrop(std::chrono::milliseconds patience)
{
    const Clock::time_point end = Clock::now() + patience;
    while (Clock::now() < end) {
        if (colors(1) == 0U)
            return true;
        std::this_thread::sleep_for(glance);
    }
    return false;
}

} // namespace varno::bench
