#include "platform/linux/PopupSurface.h"

#include <QGuiApplication>
#include <QWindow>
#include <qpa/qplatformnativeinterface.h>

namespace varno {
namespace {

/// Of the last thing that the user did, as far as the toolkit knows.
quint32 lastSerial()
{
    QPlatformNativeInterface* const toolkit = QGuiApplication::platformNativeInterface();
    return static_cast<quint32>(
        reinterpret_cast<quintptr>(toolkit->nativeResourceForIntegration("serial")));
}

} // namespace

PopupSurface::~PopupSurface()
{
    drop();
}

void PopupSurface::drop()
{
    m_popup.reset();
    m_surface.reset();
    m_isAnswered = false;
}

/// Below and to the right of where the toolkit wants its corner, which thinks that its parent is in
/// the corner of the screen; the compositor knows better what fits.
WaylandOwned<xdg_positioner> PopupSurface::positioner(const QWindow& parent) const
{
    const QPoint corner = window().position() - parent.position();
    WaylandOwned<xdg_positioner> result(xdg_wm_base_create_positioner(shells().popups.get()));
    xdg_positioner_set_size(result.get(), window().width(), window().height());
    xdg_positioner_set_anchor_rect(result.get(), corner.x(), corner.y(), 1, 1);
    xdg_positioner_set_anchor(result.get(), XDG_POSITIONER_ANCHOR_TOP_LEFT);
    xdg_positioner_set_gravity(result.get(), XDG_POSITIONER_GRAVITY_BOTTOM_RIGHT);
    xdg_positioner_set_constraint_adjustment(result.get(),
                                             XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_SLIDE_X |
                                                 XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_SLIDE_Y);
    return result;
}

bool PopupSurface::take(wl_surface& surface, wl_event_queue& queue)
{
    const QWindow* const parentWindow = window().transientParent();
    SurfaceRole* const parent = of(parentWindow);
    if (!parent || !parentWindow->isVisible())
        return false;
    const Within shell(*shells().popups, queue);
    m_surface.reset(xdg_wm_base_get_xdg_surface(shell.get(), &surface));
    m_popup.reset(xdg_surface_get_popup(m_surface.get(), parent->popupParent(),
                                        positioner(*parentWindow).get()));
    parent->adopt(*m_popup);
    listen();
    if (window().type() == Qt::Popup)
        xdg_popup_grab(m_popup.get(), shells().seat.get(), lastSerial());
    wl_surface_commit(&surface);
    const bool settled = wait(queue, m_isAnswered);
    leaveQueue(m_surface.get());
    leaveQueue(m_popup.get());
    return settled;
}

void PopupSurface::listen()
{
    static constexpr xdg_surface_listener surfaceListener = {
        .configure =
            [](void* role, xdg_surface* surface, quint32 serial) {
                xdg_surface_ack_configure(surface, serial);
                static_cast<PopupSurface*>(role)->m_isAnswered = true;
            },
    };
    static constexpr xdg_popup_listener popupListener = {
        .configure = [](void*, xdg_popup*, qint32, qint32, qint32, qint32) {},
        .popup_done = [](void* role,
                         xdg_popup*) { static_cast<PopupSurface*>(role)->closeWindow(); },
        .repositioned = [](void*, xdg_popup*, quint32) {},
    };
    xdg_surface_add_listener(m_surface.get(), &surfaceListener, this);
    xdg_popup_add_listener(m_popup.get(), &popupListener, this);
}

} // namespace varno
