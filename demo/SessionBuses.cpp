#include "demo/SessionBuses.h"

#include <gio/gio.h>

#include <cstdlib>

namespace varno {

void separateKeyRingFromDesktop()
{
    const char* const desktopBus = std::getenv("VARNO_DESKTOP_BUS");
    if (!desktopBus || *desktopBus == '\0')
        return;
    // The one that the key ring's client shares, as long as somebody holds it: never given back.
    GDBusConnection* const keyRingBus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    if (!keyRingBus)
        return;
    g_dbus_connection_set_exit_on_close(keyRingBus, FALSE);
    setenv("DBUS_SESSION_BUS_ADDRESS", desktopBus, 1);
}

} // namespace varno
