#include "platform/linux/WaylandLayerShell.h"

#include "platform/linux/LayerDrag.h"
#include "platform/linux/LayerSurface.h"
#include "platform/linux/PopupSurface.h"
#include "platform/linux/WaylandGlobals.h"

#include <QGuiApplication>
#include <QPlatformSurfaceEvent>
#include <QWindow>

#include <utility>

namespace varno {
namespace {

LayerSurface* layerOf(const QWindow& window)
{
    return qobject_cast<LayerSurface*>(SurfaceRole::of(&window));
}

} // namespace

WaylandLayerShell::WaylandLayerShell(wl_display& display)
    : QObject(qGuiApp)
{
    const WaylandGlobals globals(display);
    m_shells = {.display = &display,
                .layers = globals.bind<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface,
                                                            layerShellVersion),
                .popups = globals.bind<xdg_wm_base>(xdg_wm_base_interface, 1),
                .seat = globals.bind<wl_seat>(wl_seat_interface, 1)};
    static constexpr xdg_wm_base_listener listener = {
        .ping = [](void*, xdg_wm_base* popups,
                   quint32 serial) { xdg_wm_base_pong(popups, serial); },
    };
    xdg_wm_base_add_listener(m_shells.popups.get(), &listener, nullptr);
    m_pointer = std::make_unique<WaylandPointer>(*m_shells.seat,
                                                 globals.bind<zwp_relative_pointer_manager_v1>(
                                                     zwp_relative_pointer_manager_v1_interface, 1));
    m_keyboard = std::make_unique<WaylandKeyboard>(globals.bind<wl_seat>(wl_seat_interface, 1));
    shareKeyboard();
    QGuiApplication::instance()->installEventFilter(this);
}

/// A surface that has asked for the keyboard has it for itself: so that other windows can be used
/// beside it, it lets go when the pointer leaves it.
void WaylandLayerShell::shareKeyboard()
{
    const auto forAll = [](void (LayerSurface::*act)()) {
        for (const QWindow* const window : QGuiApplication::topLevelWindows())
            if (LayerSurface* const layer = layerOf(*window))
                (layer->*act)();
    };
    connect(m_pointer.get(), &WaylandPointer::left, this,
            [forAll] { forAll(&LayerSurface::yieldKeyboard); });
    connect(m_pointer.get(), &WaylandPointer::entered, this,
            [forAll] { forAll(&LayerSurface::offerKeyboard); });
}

void WaylandLayerShell::adopt(QWindow& window)
{
    if (SurfaceRole::of(&window))
        return;
    if (window.type() == Qt::Popup || window.type() == Qt::ToolTip)
        new PopupSurface(window, m_shells);
    else
        new LayerSurface(window, m_shells);
}

bool WaylandLayerShell::eventFilter(QObject* object, QEvent* event)
{
    const auto* const change = event->type() == QEvent::PlatformSurface
                                   ? dynamic_cast<const QPlatformSurfaceEvent*>(event)
                                   : nullptr;
    if (!change || change->surfaceEventType() != QPlatformSurfaceEvent::SurfaceCreated)
        return false;
    // What is dragged is shown by the compositor.
    if (auto* const window = qobject_cast<QWindow*>(object);
        window && !window->parent() && !window->inherits("QShapedPixmapWindow"))
        adopt(*window);
    return false;
}

void WaylandLayerShell::activate(QWindow& window)
{
    if (LayerSurface* const layer = layerOf(window))
        layer->activate();
}

void WaylandLayerShell::watchKeyboard(KeyboardWatcher watcher)
{
    m_keyboard->setWatcher(std::move(watcher));
}

void WaylandLayerShell::startMove(QWindow& window)
{
    startResize(window, {});
}

void WaylandLayerShell::startResize(QWindow& window, Qt::Edges edges)
{
    if (LayerSurface* const layer = layerOf(window); layer && m_pointer->isPressed())
        new LayerDrag(*layer, *m_pointer, edges);
}

} // namespace varno
