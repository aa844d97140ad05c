#include "platform/WindowPlacement.h"
#include "platform/linux/WaylandSocket.h"
#include "platform/linux/XConnection.h"
#include "platform/linux/XcbReply.h"

#include <QWindow>

#include <array>

namespace varno {
namespace {

constexpr quint32 everyDesktop = 0xFFFFFFFF;
constexpr quint32 fromUser = 2; // the source of a request, rather than a program's own idea

bool hasXServer()
{
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const bool reached = !xcb_connection_has_error(connection);
    xcb_disconnect(connection);
    return reached;
}

void setProperty(const QWindow& window, const char* name, xcb_atom_t type, const quint32* values,
                 quint32 count)
{
    xcb_change_property(xConnection(), XCB_PROP_MODE_REPLACE, quint32(window.winId()), xAtom(name),
                        type, 32, count, values);
}

xcb_window_t root()
{
    return xcb_setup_roots_iterator(xcb_get_setup(xConnection())).data->root;
}

} // namespace

bool chooseDisplay()
{
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        return !qEnvironmentVariable("QT_QPA_PLATFORM").startsWith(u"xcb") || hasXServer();
    const bool placeable = hasXServer();
    if (placeable)
        qputenv("QT_QPA_PLATFORM", "xcb;wayland");
    return placeable || hasWaylandCompositor();
}

void prepareFloatingPanel(QWindow& window)
{
    if (!xConnection())
        return;
    fetchXAtoms({"_NET_WM_STATE", "_NET_WM_STATE_ABOVE", "_NET_WM_STATE_SKIP_TASKBAR",
                 "_NET_WM_STATE_SKIP_PAGER", "_NET_WM_DESKTOP", "_NET_WM_USER_TIME",
                 "_NET_ACTIVE_WINDOW"}); // now, since the window manager is busy afterwards
    const std::array<quint32, 3> states = {xAtom("_NET_WM_STATE_ABOVE"),
                                           xAtom("_NET_WM_STATE_SKIP_TASKBAR"),
                                           xAtom("_NET_WM_STATE_SKIP_PAGER")};
    setProperty(window, "_NET_WM_STATE", XCB_ATOM_ATOM, states.data(), states.size());
    setProperty(window, "_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, &everyDesktop, 1);
}

void activateForUser(QWindow& window, quint32 time)
{
    window.requestActivate();
    if (!xConnection())
        return;
    if (time != 0)
        setProperty(window, "_NET_WM_USER_TIME", XCB_ATOM_CARDINAL, &time, 1);
    xcb_client_message_event_t request = {};
    request.response_type = XCB_CLIENT_MESSAGE;
    request.format = 32;
    request.window = quint32(window.winId());
    request.type = xAtom("_NET_ACTIVE_WINDOW");
    request.data.data32[0] = fromUser; // NOLINT(cppcoreguidelines-pro-type-union-access)
    request.data.data32[1] = time;     // NOLINT(cppcoreguidelines-pro-type-union-access)
    xcb_send_event(xConnection(), 0, root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&request));
    xcb_flush(xConnection());
}

bool isPointerPressed()
{
    if (!xConnection())
        return true; // a compositor refuses to move anything for a button that is up
    const XcbReply<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(xConnection(), xcb_query_pointer(xConnection(), root()), nullptr));
    return pointer && (pointer->mask & XCB_BUTTON_MASK_1) != 0;
}

} // namespace varno
