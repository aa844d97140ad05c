#include "platform/UserAction.h"
#include "platform/WindowPlacement.h"
#include "platform/linux/LoadedLayerShell.h"
#include "platform/linux/WaylandSocket.h"
#include "platform/linux/XConnection.h"
#include "platform/linux/XcbReply.h"

#include <QWindow>

#include <algorithm>
#include <array>
#include <cstring>
#include <initializer_list>

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

void sendToRoot(const xcb_client_message_event_t& event, quint32 listeners)
{
    xcb_send_event(xConnection(), 0, root(), listeners, reinterpret_cast<const char*>(&event));
}

void askWindowManager(const QWindow& window, const char* what, std::initializer_list<quint32> data)
{
    xcb_client_message_event_t request = {};
    request.response_type = XCB_CLIENT_MESSAGE;
    request.format = 32;
    request.window = quint32(window.winId());
    request.type = xAtom(what);
    std::memcpy(&request.data, data.begin(), data.size() * sizeof(quint32));
    sendToRoot(request, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    xcb_flush(xConnection());
}

/// Some window managers put a window where the user is whatever it said before it was there.
void askForEveryDesktop(const QWindow& window)
{
    constexpr quint32 add = 1;
    askWindowManager(window, "_NET_WM_DESKTOP", {everyDesktop, fromUser});
    askWindowManager(window, "_NET_WM_STATE", {add, xAtom("_NET_WM_STATE_STICKY"), 0, fromUser});
}

/// Has the window manager tell where the window is: the toolkit asks the X server while the window
/// is put into a frame, and may learn where the frame was before it got to its place.
void askForPlace(const QWindow& window)
{
    constexpr quint32 noBorder = 0; // as it is
    xcb_configure_window(xConnection(), quint32(window.winId()), XCB_CONFIG_WINDOW_BORDER_WIDTH,
                         &noBorder);
}

/// Tokens of desktops on an X server end with it.
quint32 timeOf(const UserAction& action)
{
    constexpr QByteArrayView mark = "_TIME";
    const qsizetype place = action.token.lastIndexOf(mark);
    return action.time != 0 || place < 0 ? action.time
                                         : action.token.mid(place + mark.size()).toUInt();
}

} // namespace

DisplayChoice::DisplayChoice()
{
    const QString platform = qEnvironmentVariable("QT_QPA_PLATFORM");
    if ((platform.isEmpty() || platform.startsWith(u"wayland")) && chooseLayers()) {
        if (platform.isEmpty())
            choose("wayland;xcb");
    } else if (!platform.isEmpty()) {
        m_hasDisplay = !platform.startsWith(u"xcb") || hasXServer();
    } else if (hasXServer()) {
        choose("xcb;wayland");
    } else {
        m_hasDisplay = hasWaylandCompositor();
    }
}

DisplayChoice::~DisplayChoice()
{
    if (m_hasChosen)
        qunsetenv("QT_QPA_PLATFORM");
}

void DisplayChoice::choose(const char* platforms)
{
    qputenv("QT_QPA_PLATFORM", platforms);
    m_hasChosen = true;
}

bool hasSystemFrame()
{
    return false;
}

void prepareFloatingPanel(QWindow& window)
{
    if (LayerShell* const layers = layerShell())
        layers->adopt(window);
    if (!xConnection())
        return;
    fetchXAtoms({"_NET_WM_STATE", "_NET_WM_STATE_ABOVE", "_NET_WM_STATE_SKIP_TASKBAR",
                 "_NET_WM_STATE_SKIP_PAGER", "_NET_WM_STATE_STICKY", "_NET_WM_DESKTOP",
                 "_NET_WM_USER_TIME",
                 "_NET_ACTIVE_WINDOW"}); // now, since the window manager is busy afterwards
    const std::array<quint32, 3> states = {xAtom("_NET_WM_STATE_ABOVE"),
                                           xAtom("_NET_WM_STATE_SKIP_TASKBAR"),
                                           xAtom("_NET_WM_STATE_SKIP_PAGER")};
    setProperty(window, "_NET_WM_STATE", XCB_ATOM_ATOM, states.data(), states.size());
    setProperty(window, "_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, &everyDesktop, 1);
}

void activateForUser(QWindow& window, const UserAction& action)
{
    if (LayerShell* const layers = layerShell())
        return layers->activate(window);
    if (!xConnection() && !action.token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", action.token); // the toolkit takes it out again
    if (xConnection()) {
        askForEveryDesktop(window);
        askForPlace(window);
    }
    window.requestActivate();
    if (!xConnection())
        return;
    const quint32 time = timeOf(action);
    if (time != 0)
        setProperty(window, "_NET_WM_USER_TIME", XCB_ATOM_CARDINAL, &time, 1);
    askWindowManager(window, "_NET_ACTIVE_WINDOW", {fromUser, time});
    acknowledge(action);
}

/// By a message that is longer than an event, and so comes in pieces.
void acknowledge(const UserAction& action)
{
    if (!xConnection() || action.token.isEmpty())
        return;
    QByteArray message =
        "remove: ID=\"" + QByteArray(action.token).replace('\\', "\\\\").replace('"', "\\\"") + '"';
    message.append('\0');
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 8;
    event.window = xcb_generate_id(xConnection()); // what the pieces have in common
    event.type = xAtom("_NET_STARTUP_INFO_BEGIN");
    constexpr qsizetype room = sizeof event.data;
    for (qsizetype start = 0; start < message.size(); start += room) {
        event.data = {};
        std::memcpy(&event.data, message.constData() + start,
                    std::size_t(std::min(room, message.size() - start)));
        sendToRoot(event, XCB_EVENT_MASK_PROPERTY_CHANGE);
        event.type = xAtom("_NET_STARTUP_INFO");
    }
    xcb_flush(xConnection());
}

void startMove(QWindow& window)
{
    if (LayerShell* const layers = layerShell())
        return layers->startMove(window);
    window.startSystemMove();
}

void startResize(QWindow& window, Qt::Edges edges)
{
    if (LayerShell* const layers = layerShell())
        return layers->startResize(window, edges);
    window.startSystemResize(edges);
}

bool isPointerPressed()
{
    if (const LayerShell* const layers = layerShell())
        return layers->isPointerPressed();
    if (!xConnection())
        return true; // a compositor refuses to move anything for a button that is up
    const XcbReply<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(xConnection(), xcb_query_pointer(xConnection(), root()), nullptr));
    return pointer && (pointer->mask & XCB_BUTTON_MASK_1) != 0;
}

} // namespace varno
