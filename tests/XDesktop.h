#pragma once

#include "platform/linux/XcbReply.h"
#include "tests/Patience.h"

#include <QByteArray>
#include <QList>
#include <QRect>

#include <xcb/xtest.h>

#include <algorithm>
#include <array>

namespace varno {

/// X key codes of a PC's keyboard.
namespace pcKey {
inline constexpr quint8 escape = 9;
inline constexpr quint8 q = 24;
inline constexpr quint8 tab = 23;
inline constexpr quint8 y = 29;
inline constexpr quint8 enter = 36;
inline constexpr quint8 control = 37;
inline constexpr quint8 a = 38;
inline constexpr quint8 f = 41;
inline constexpr quint8 j = 44;
inline constexpr quint8 shift = 50;
inline constexpr quint8 x = 53;
inline constexpr quint8 v = 55;
inline constexpr quint8 b = 56;
inline constexpr quint8 comma = 59;
inline constexpr quint8 alt = 64;
inline constexpr quint8 capsLock = 66;
inline constexpr quint8 numLock = 77;
inline constexpr quint8 scrollLock = 78;
inline constexpr quint8 super = 133;
inline constexpr quint16 altSuper = XCB_MOD_MASK_1 | XCB_MOD_MASK_4;
} // namespace pcKey

/// A client of an X server that is somebody at its keyboard, has windows of its own, and sees those
/// of others. Nothing of it goes through the toolkit.
class XDesktop {
    /// The reply to a request, or null.
    template <auto request, auto reply, typename... Arguments>
    [[nodiscard]] auto ask(Arguments... arguments) const
    {
        using Reply = std::remove_pointer_t<decltype(reply(nullptr, {}, nullptr))>;
        const auto send = [&]<typename Cookie, typename... Parameters>(
                              Cookie (*function)(xcb_connection_t*, Parameters...)) {
            return function(m_connection, static_cast<Parameters>(arguments)...);
        };
        return XcbReply<Reply>(reply(m_connection, send(request), nullptr));
    }

public:
    explicit XDesktop(const QByteArray& display = qgetenv("DISPLAY"))
        : m_connection(xcb_connect(display.constData(), nullptr))
    {
        if (xcb_connection_has_error(m_connection) != 0)
            qFatal("There is no X server");
        m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        setRepeating(false);
        fake(XCB_MOTION_NOTIFY, 0, place(root()).bottomRight()); // where it hovers over nothing
    }
    ~XDesktop() { xcb_disconnect(m_connection); }
    Q_DISABLE_COPY_MOVE(XDesktop)

    [[nodiscard]] xcb_connection_t* connection() const { return m_connection; }
    [[nodiscard]] const xcb_screen_t& screen() const { return *m_screen; }
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }

    /// Whether a key that is held is pressed again and again. At first none is: on a busy machine
    /// it may take long between a key's press and its release.
    void setRepeating(bool repeats)
    {
        const quint32 mode = repeats ? XCB_AUTO_REPEAT_MODE_ON : XCB_AUTO_REPEAT_MODE_OFF;
        finish(xcb_change_keyboard_control_checked(m_connection, XCB_KB_AUTO_REPEAT_MODE, &mode));
    }

    void press(quint8 key) { fake(XCB_KEY_PRESS, key); }
    void lift(quint8 key) { fake(XCB_KEY_RELEASE, key); }
    void type(quint8 key)
    {
        press(key);
        lift(key);
    }
    /// Lower-case letters, on the layout of the United States.
    void type(const QByteArray& word)
    {
        static constexpr std::array rows = {std::pair{24, "qwertyuiop"}, std::pair{38, "asdfghjkl"},
                                            std::pair{52, "zxcvbnm"}};
        for (const char letter : word)
            for (const auto& [first, letters] : rows)
                if (const auto place = QByteArray(letters).indexOf(letter); place >= 0)
                    type(static_cast<quint8>(first + place));
    }
    void typeWith(quint8 modifier, quint8 key)
    {
        press(modifier);
        type(key);
        lift(modifier);
    }
    void pressModifiers()
    {
        press(pcKey::alt);
        press(pcKey::super);
    }
    void liftModifiers()
    {
        lift(pcKey::super);
        lift(pcKey::alt);
    }
    /// With Alt and Super.
    void typeShortcut(quint8 key = pcKey::f)
    {
        pressModifiers();
        type(key);
        liftModifiers();
    }
    void point(const QPoint& place) { fake(XCB_MOTION_NOTIFY, 0, place); }
    void pressButton() { fake(XCB_BUTTON_PRESS, XCB_BUTTON_INDEX_1); }
    void liftButton() { fake(XCB_BUTTON_RELEASE, XCB_BUTTON_INDEX_1); }
    /// Without waiting in between, so that it is one however busy the machine is.
    void doubleClick(const QPoint& place)
    {
        fake(XCB_MOTION_NOTIFY, 0, place);
        using Types = std::initializer_list<quint8>;
        for (const quint8 type : Types{XCB_BUTTON_PRESS, XCB_BUTTON_RELEASE, XCB_BUTTON_PRESS})
            send(type, XCB_BUTTON_INDEX_1);
        fake(XCB_BUTTON_RELEASE, XCB_BUTTON_INDEX_1);
    }

    /// Takes a combination for itself, as another program may; false if it has an owner.
    bool grab(quint8 key = pcKey::f, quint16 modifiers = pcKey::altSuper)
    {
        return finish(xcb_grab_key_checked(m_connection, 0, root(), modifiers, key,
                                           XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    void release(quint8 key = pcKey::f, quint16 modifiers = pcKey::altSuper)
    {
        finish(xcb_ungrab_key_checked(m_connection, key, root(), modifiers));
    }

    /// A window that has the keyboard, or none. `state` is one of _NET_WM_STATE, if any.
    xcb_window_t openWindow(const char* state = nullptr)
    {
        const xcb_window_t window = xcb_generate_id(m_connection);
        const quint32 events = XCB_EVENT_MASK_KEY_PRESS;
        finish(xcb_create_window_checked(m_connection, XCB_COPY_FROM_PARENT, window, root(), 0, 0,
                                         400, 300, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                                         XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events));
        const xcb_atom_t states = state ? atom(state) : xcb_atom_t{XCB_ATOM_NONE};
        finish(xcb_change_property_checked(m_connection, XCB_PROP_MODE_REPLACE, window,
                                           atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 32, state ? 1 : 0,
                                           &states));
        finish(xcb_map_window_checked(m_connection, window));
        if (!QTest::qWaitFor([&] { return isViewable(window); }, patience))
            return XCB_NONE;
        constexpr quint32 fromPager = 2;
        tell(window, "_NET_ACTIVE_WINDOW", {fromPager});
        return QTest::qWaitFor([&] { return focus() == window; }, patience) ? window : XCB_NONE;
    }

    /// Asks the window manager.
    void tell(xcb_window_t window, const char* what, const std::array<quint32, 5>& data)
    {
        send(window, what, data,
             XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    }
    /// Sends a message about a window to those who listen for that on the screen.
    void send(xcb_window_t window, const char* what, const std::array<quint32, 5>& data,
              quint32 listeners)
    {
        xcb_client_message_event_t event = {};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = window;
        event.type = atom(what);
        std::copy(data.begin(), data.end(), std::begin(event.data.data32));
        finish(xcb_send_event_checked(m_connection, 0, root(), listeners,
                                      reinterpret_cast<const char*>(&event)));
    }

    /// The window with a title that a process has on the screen, or none.
    [[nodiscard]] xcb_window_t windowOf(qint64 process) const
    {
        return shownWindow(root(), process);
    }
    [[nodiscard]] xcb_window_t focus() const
    {
        const auto reply = ask<xcb_get_input_focus, xcb_get_input_focus_reply>();
        return reply ? reply->focus : xcb_window_t{XCB_NONE};
    }

    /// Where it stands on the screen.
    [[nodiscard]] QRect place(xcb_window_t window) const
    {
        const auto size = ask<xcb_get_geometry, xcb_get_geometry_reply>(window);
        const auto corner =
            ask<xcb_translate_coordinates, xcb_translate_coordinates_reply>(window, root(), 0, 0);
        return size && corner ? QRect(corner->dst_x, corner->dst_y, size->width, size->height)
                              : QRect();
    }

    /// The bytes of what it shows, or of a part of it; empty when it is not on the screen.
    [[nodiscard]] QByteArray picture(xcb_window_t window) const
    {
        return picture(window, QRect({}, place(window).size()));
    }
    [[nodiscard]] QByteArray picture(xcb_window_t window, const QRect& part) const
    {
        const auto reply =
            ask<xcb_get_image, xcb_get_image_reply>(XCB_IMAGE_FORMAT_Z_PIXMAP, window, part.x(),
                                                    part.y(), part.width(), part.height(), ~0U);
        return reply ? QByteArray(reinterpret_cast<const char*>(xcb_get_image_data(reply.get())),
                                  xcb_get_image_data_length(reply.get()))
                     : QByteArray();
    }

    /// A property of numbers of 32 bits: windows, atoms, cardinals.
    [[nodiscard]] QList<quint32> property(xcb_window_t window, const char* name) const
    {
        constexpr quint32 most = 1024;
        const auto reply = ask<xcb_get_property, xcb_get_property_reply>(0, window, atom(name),
                                                                         XCB_ATOM_ANY, 0, most);
        if (!reply || reply->format != 32)
            return {};
        const auto* first = static_cast<const quint32*>(xcb_get_property_value(reply.get()));
        return {first, first + reply->value_len};
    }

    [[nodiscard]] xcb_atom_t atom(const char* name) const
    {
        const auto reply = ask<xcb_intern_atom, xcb_intern_atom_reply>(0, qstrlen(name), name);
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

private:
    [[nodiscard]] bool isViewable(xcb_window_t window) const
    {
        const auto reply = ask<xcb_get_window_attributes, xcb_get_window_attributes_reply>(window);
        return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    }

    /// Window managers put the windows of others into frames of their own.
    [[nodiscard]] xcb_window_t shownWindow(xcb_window_t above, qint64 process) const
    {
        const auto tree = ask<xcb_query_tree, xcb_query_tree_reply>(above);
        for (int index = 0; tree && index < tree->children_len; ++index) {
            const xcb_window_t window = xcb_query_tree_children(tree.get())[index];
            if (!isViewable(window))
                continue;
            // An icon in a status area may name its process as well, but has no state.
            if (property(window, "_NET_WM_PID").value(0) == process &&
                !property(window, "_NET_WM_STATE").isEmpty())
                return window;
            if (const xcb_window_t below = shownWindow(window, process); below != XCB_NONE)
                return below;
        }
        return XCB_NONE;
    }

    void fake(quint8 type, quint8 detail, const QPoint& place = {})
    {
        finish(send(type, detail, place));
    }
    xcb_void_cookie_t send(quint8 type, quint8 detail, const QPoint& place = {})
    {
        return xcb_test_fake_input_checked(m_connection, type, detail, XCB_CURRENT_TIME, root(),
                                           static_cast<qint16>(place.x()),
                                           static_cast<qint16>(place.y()), 0);
    }

    /// Waits until the server has done it; whether it has.
    bool finish(xcb_void_cookie_t request)
    {
        return !XcbReply<xcb_generic_error_t>(xcb_request_check(m_connection, request));
    }

    xcb_connection_t* m_connection;
    const xcb_screen_t* m_screen = nullptr;
};

} // namespace varno
