#pragma once

#include "platform/linux/WaylandOwned.h"

#include <QByteArray>
#include <QHash>

namespace varno {

/// What a compositor offers to a client.
class WaylandGlobals {
public:
    /// Waits for the compositor. The display is the client's connection and outlives this.
    explicit WaylandGlobals(wl_display& display);

    /// Whether windows are better shown as layers: not in Plasma, where the X server beside it is
    /// as good a place and knows the keyboard's way back.
    [[nodiscard]] bool recommendsLayers() const;

    /// The global of an interface, in the version that is asked for, which is offered.
    /// Its events come in the connection's own queue.
    template <typename Object>
    [[nodiscard]] WaylandOwned<Object> bind(const wl_interface& interface, quint32 version) const
    {
        return WaylandOwned<Object>(static_cast<Object*>(bindAny(interface, version)));
    }

private:
    struct Global {
        quint32 name = 0;
        quint32 version = 0; ///< the highest
    };

    [[nodiscard]] void* bindAny(const wl_interface& interface, quint32 version) const;
    [[nodiscard]] bool offers(const char* interface, quint32 version) const;

    WaylandOwned<wl_event_queue> m_queue;
    WaylandOwned<wl_registry> m_registry;
    QHash<QByteArray, Global> m_globals; ///< the first of each interface
};

/// The version that knows a keyboard that comes and goes as with other windows.
inline constexpr quint32 layerShellVersion = 4;

} // namespace varno
