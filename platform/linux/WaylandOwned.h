#pragma once

#include "relative-pointer-unstable-v1-client.h"
#include "wlr-layer-shell-unstable-v1-client.h"
#include "xdg-shell-client.h"

#include <wayland-client.h>

#include <memory>

namespace varno {

struct WaylandDestroy {
    void operator()(wl_display* owned) const { wl_display_disconnect(owned); }
    void operator()(wl_event_queue* owned) const { wl_event_queue_destroy(owned); }
    void operator()(wl_registry* owned) const { wl_registry_destroy(owned); }
    void operator()(wl_callback* owned) const { wl_callback_destroy(owned); }
    void operator()(wl_seat* owned) const { wl_seat_destroy(owned); }
    void operator()(wl_keyboard* owned) const { wl_keyboard_destroy(owned); }
    void operator()(wl_pointer* owned) const { wl_pointer_destroy(owned); }
    void operator()(zwp_relative_pointer_v1* owned) const
    {
        zwp_relative_pointer_v1_destroy(owned);
    }
    void operator()(zwp_relative_pointer_manager_v1* owned) const
    {
        zwp_relative_pointer_manager_v1_destroy(owned);
    }
    void operator()(xdg_wm_base* owned) const { xdg_wm_base_destroy(owned); }
    void operator()(xdg_positioner* owned) const { xdg_positioner_destroy(owned); }
    void operator()(xdg_surface* owned) const { xdg_surface_destroy(owned); }
    void operator()(xdg_popup* owned) const { xdg_popup_destroy(owned); }
    void operator()(zwlr_layer_shell_v1* owned) const { zwlr_layer_shell_v1_destroy(owned); }
    void operator()(zwlr_layer_surface_v1* owned) const { zwlr_layer_surface_v1_destroy(owned); }
};

/// An object of the Wayland protocol, of this side.
template <typename Object>
using WaylandOwned = std::unique_ptr<Object, WaylandDestroy>;

} // namespace varno
