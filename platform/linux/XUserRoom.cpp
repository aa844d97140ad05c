#include "platform/WindowPlacement.h"
#include "platform/linux/XConnection.h"
#include "platform/linux/XcbReply.h"

#include <QCursor>
#include <QGuiApplication>
#include <QList>
#include <QScreen>

#include <optional>

namespace varno {
namespace {

xcb_window_t root()
{
    return xcb_setup_roots_iterator(xcb_get_setup(xConnection())).data->root;
}

/// A property of numbers of 32 bits.
QList<quint32> property(xcb_window_t window, const char* name)
{
    constexpr quint32 most = 64;
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        xConnection(),
        xcb_get_property(xConnection(), 0, window, xAtom(name), XCB_ATOM_ANY, 0, most), nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto* first = static_cast<const quint32*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

/// The middle of the window that has the keyboard, in pixels of the X server; nothing where it is
/// the desktop's own, which is on all screens.
std::optional<QPoint> middleOfActiveWindow()
{
    const xcb_window_t window = property(root(), "_NET_ACTIVE_WINDOW").value(0);
    if (window == XCB_NONE ||
        property(window, "_NET_WM_WINDOW_TYPE").contains(xAtom("_NET_WM_WINDOW_TYPE_DESKTOP")))
        return {};
    xcb_connection_t* connection = xConnection();
    const XcbReply<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
    if (!size)
        return {};
    const XcbReply<xcb_translate_coordinates_reply_t> middle(xcb_translate_coordinates_reply(
        connection,
        xcb_translate_coordinates(connection, window, root(), qint16(size->width / 2),
                                  qint16(size->height / 2)),
        nullptr));
    return middle ? std::optional(QPoint(middle->dst_x, middle->dst_y)) : std::nullopt;
}

/// In pixels of the X server: the toolkit scales a screen, but not where it begins.
QRect pixelsOf(const QScreen& screen)
{
    return {screen.geometry().topLeft(), screen.size() * screen.devicePixelRatio()};
}

/// What the desktop's bars leave of a screen. The toolkit knows it only where there is one screen.
QRect roomOf(const QScreen& screen)
{
    const QList<quint32> area = property(root(), "_NET_WORKAREA");
    const QRect pixels = pixelsOf(screen);
    if (area.size() < 4)
        return screen.availableGeometry();
    const QRect room = pixels & QRect(int(area[0]), int(area[1]), int(area[2]), int(area[3]));
    const double scale = screen.devicePixelRatio();
    const QRect scaled(pixels.topLeft() + (room.topLeft() - pixels.topLeft()) / scale,
                       room.size() / scale);
    return scaled & screen.availableGeometry();
}

QScreen* screenOfActiveWindow()
{
    if (const std::optional<QPoint> middle = middleOfActiveWindow())
        for (QScreen* screen : QGuiApplication::screens())
            if (pixelsOf(*screen).contains(*middle))
                return screen;
    return nullptr;
}

} // namespace

QRect roomBeforeUser()
{
    if (xConnection())
        fetchXAtoms({"_NET_ACTIVE_WINDOW", "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_DESKTOP",
                     "_NET_WORKAREA"});
    const QScreen* screen = xConnection() ? screenOfActiveWindow() : nullptr;
    if (!screen)
        screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (!screen)
        return {};
    return xConnection() ? roomOf(*screen) : screen->availableGeometry();
}

} // namespace varno
