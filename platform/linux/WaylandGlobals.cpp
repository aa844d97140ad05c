#include "platform/linux/WaylandGlobals.h"

namespace varno {

WaylandGlobals::WaylandGlobals(wl_display& display)
    : m_queue(wl_display_create_queue(&display))
{
    auto* const wrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(&display));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), m_queue.get());
    m_registry.reset(wl_display_get_registry(wrapper));
    wl_proxy_wrapper_destroy(wrapper);
    static constexpr wl_registry_listener listener = {
        .global =
            [](void* globals, wl_registry*, quint32 name, const char* interface, quint32 version) {
                auto& known = static_cast<WaylandGlobals*>(globals)->m_globals;
                if (!known.contains(interface))
                    known.insert(interface, {.name = name, .version = version});
            },
        .global_remove = [](void*, wl_registry*, quint32) {},
    };
    wl_registry_add_listener(m_registry.get(), &listener, this);
    wl_display_roundtrip_queue(&display, m_queue.get());
}

bool WaylandGlobals::recommendsLayers() const
{
    return offers(zwlr_layer_shell_v1_interface.name, layerShellVersion) &&
           offers(zwp_relative_pointer_manager_v1_interface.name, 1) &&
           offers(xdg_wm_base_interface.name, 1) && offers(wl_seat_interface.name, 1) &&
           !offers("org_kde_plasma_shell", 1);
}

void* WaylandGlobals::bindAny(const wl_interface& interface, quint32 version) const
{
    void* const object = wl_registry_bind(m_registry.get(), m_globals.value(interface.name).name,
                                          &interface, version);
    wl_proxy_set_queue(static_cast<wl_proxy*>(object), nullptr);
    return object;
}

bool WaylandGlobals::offers(const char* interface, quint32 version) const
{
    return m_globals.value(interface).version >= version;
}

} // namespace varno
