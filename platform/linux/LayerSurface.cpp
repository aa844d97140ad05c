#include "platform/linux/LayerSurface.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace varno {
namespace {

constexpr quint32 firstCorner =
    ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT;
constexpr quint32 allSides =
    firstCorner | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;

/// With as much of it inside as there is room for, from its top left corner.
QRect movedInto(const QRect& room, QRect place)
{
    place.moveLeft(std::max(room.left(), std::min(place.left(), room.right() + 1 - place.width())));
    place.moveTop(std::max(room.top(), std::min(place.top(), room.bottom() + 1 - place.height())));
    return place;
}

} // namespace

LayerSurface::LayerSurface(QWindow& window, const WaylandShells& shells)
    : SurfaceRole(window, shells)
{
    connect(&window, &QWindow::screenChanged, this, &LayerSurface::watchScreen);
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, [this](const QScreen* screen) {
        if (screen == this->window().screen())
            loseScreen();
    });
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this] {
        if (m_isLost)
            showAgain();
    });
    watchScreen();
}

LayerSurface::~LayerSurface()
{
    drop();
}

void LayerSurface::drop()
{
    m_moving.reset();
    m_layer.reset();
    if (m_parent) {
        m_parent->setLayer(ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY);
        m_parent->activate();
        m_parent.clear();
    }
    m_isAnswered = false;
    m_isLost = false;
    m_isPlaced = false;
}

void LayerSurface::adopt(xdg_popup& popup)
{
    if (m_layer)
        zwlr_layer_surface_v1_get_popup(m_layer.get(), &popup);
}

bool LayerSurface::take(wl_surface& surface, wl_event_queue& queue)
{
    if (!window().screen() || window().screen()->geometry().isEmpty())
        return false; // sway ends when it is asked for one without an output
    m_parent = qobject_cast<LayerSurface*>(of(window().transientParent()));
    if (m_parent)
        m_parent->setLayer(ZWLR_LAYER_SHELL_V1_LAYER_TOP);
    const Within shell(*shells().layers, queue);
    m_layer.reset(zwlr_layer_shell_v1_get_layer_surface(
        shell.get(), &surface, nullptr, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "varno"));
    listen();
    // What is held by all sides is told how much room there is.
    zwlr_layer_surface_v1_set_anchor(m_layer.get(), allSides);
    m_hasYielded = false;
    setKeyboard(ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_EXCLUSIVE);
    const bool answered = wait(queue, m_isAnswered);
    leaveQueue(m_layer.get());
    if (!answered || m_room.isEmpty())
        return false;
    zwlr_layer_surface_v1_set_anchor(m_layer.get(), firstCorner);
    choosePlace();
    sendPlace(); // with the first picture
    return true;
}

void LayerSurface::listen()
{
    static constexpr zwlr_layer_surface_v1_listener listener = {
        .configure =
            [](void* role, zwlr_layer_surface_v1*, quint32 serial, quint32 width, quint32 height) {
                static_cast<LayerSurface*>(role)->configure(
                    serial, QSize(static_cast<int>(width), static_cast<int>(height)));
            },
        .closed = [](void* role,
                     zwlr_layer_surface_v1*) { static_cast<LayerSurface*>(role)->closeWindow(); },
    };
    zwlr_layer_surface_v1_add_listener(m_layer.get(), &listener, this);
}

/// Or there is no output for it.
void LayerSurface::close()
{
    if (m_isAnswered)
        return showAgain();
    m_isAnswered = true;
    m_room = {};
}

/// Not every compositor tells the surface. It stays as it is while there is no other screen: sway
/// ends, at the next one, when a surface goes in between.
void LayerSurface::loseScreen()
{
    m_isLost = m_layer != nullptr;
    const QList<QScreen*> screens = QGuiApplication::screens();
    if (std::any_of(screens.begin(), screens.end(), [this](const QScreen* screen) {
            return screen != window().screen() && !screen->geometry().isEmpty();
        }))
        showAgain();
}

void LayerSurface::watchScreen()
{
    disconnect(m_screenResized);
    QScreen* const screen = window().screen();
    if (!screen)
        return;
    m_screenResized = connect(screen, &QScreen::geometryChanged, this,
                              [this, before = screen->size()](const QRect& geometry) {
                                  if (geometry.size() != before)
                                      showAgain();
                              });
}

/// Where there is room for it now; later, from the event loop.
void LayerSurface::showAgain()
{
    m_isLost = m_layer != nullptr;
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (!m_isLost)
                return;
            watchScreen();
            window().hide();
            window().show();
        },
        Qt::QueuedConnection);
}

void LayerSurface::choosePlace()
{
    const QSize size = window().size().boundedTo(m_room).expandedTo(window().minimumSize());
    window().resize(size);
    QRect place({}, size);
    const QRect around = m_parent ? m_parent->m_place : room();
    place.moveTopLeft(m_chosenCorner.value_or(
        around.topLeft() +
        QPoint(around.width() - size.width(), around.height() - size.height()) / 2));
    m_place = movedInto(room(), place);
}

QSize LayerSurface::leastSize() const
{
    return window().minimumSize();
}

void LayerSurface::sendPlace()
{
    m_isPlaced = false;
    zwlr_layer_surface_v1_set_size(m_layer.get(), static_cast<quint32>(m_place.width()),
                                   static_cast<quint32>(m_place.height()));
    zwlr_layer_surface_v1_set_margin(m_layer.get(), m_place.top(), 0, 0, m_place.left());
}

void LayerSurface::setPlace(const QRect& place)
{
    if (!m_layer || place == m_place)
        return;
    const bool isResized = place.size() != m_place.size();
    m_place = place;
    m_chosenCorner = place.topLeft();
    sendPlace();
    static constexpr wl_callback_listener listener = {
        .done = [](void* role, wl_callback*,
                   quint32) { static_cast<LayerSurface*>(role)->arrive(); },
    };
    m_moving.reset(wl_surface_frame(surface()));
    wl_callback_add_listener(m_moving.get(), &listener, this);
    if (isResized)
        window().resize(place.size()); // the next picture brings the place along
    else
        wl_surface_commit(surface());
}

void LayerSurface::arrive()
{
    m_moving.reset();
    Q_EMIT arrived();
}

void LayerSurface::configure(quint32 serial, const QSize& size)
{
    zwlr_layer_surface_v1_ack_configure(m_layer.get(), serial);
    if (!m_isAnswered) {
        m_isAnswered = true;
        m_room = size;
    } else if (size == m_place.size()) {
        m_isPlaced = true;
    } else if (m_isPlaced && !size.isEmpty()) { // else it has not heard yet of what is asked for
        m_place.setSize(size);
        window().resize(size);
    }
}

void LayerSurface::activate()
{
    if (!m_layer || QGuiApplication::focusWindow() == &window())
        return;
    m_hasYielded = false;
    setKeyboard(ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_EXCLUSIVE);
}

/// sway keeps the keyboard for a layer that may have it, whatever window the user chooses.
void LayerSurface::yieldKeyboard()
{
    if (!m_layer || std::exchange(m_hasYielded, true))
        return;
    static const bool isSway = qEnvironmentVariableIsSet("SWAYSOCK");
    setKeyboard(isSway ? ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_NONE
                       : ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_ON_DEMAND);
}

void LayerSurface::offerKeyboard()
{
    if (m_layer && m_hasYielded)
        setKeyboard(ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_ON_DEMAND);
    m_hasYielded = false;
}

void LayerSurface::setLayer(zwlr_layer_shell_v1_layer layer)
{
    if (!m_layer)
        return;
    zwlr_layer_surface_v1_set_layer(m_layer.get(), layer);
    wl_surface_commit(surface());
}

void LayerSurface::setKeyboard(zwlr_layer_surface_v1_keyboard_interactivity interactivity)
{
    zwlr_layer_surface_v1_set_keyboard_interactivity(m_layer.get(), interactivity);
    wl_surface_commit(surface());
}

} // namespace varno
