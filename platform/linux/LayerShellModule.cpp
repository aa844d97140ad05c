#include "platform/linux/Module.h"
#include "platform/linux/WaylandGlobals.h"
#include "platform/linux/WaylandLayerShell.h"

#include <QGuiApplication>
#include <qpa/qplatformnativeinterface.h>

using namespace varno;

bool varnoRecommendsLayers()
{
    const WaylandOwned<wl_display> display(wl_display_connect(nullptr));
    return display && WaylandGlobals(*display).recommendsLayers();
}

LayerShell* varnoMakeLayerShell()
{
    QPlatformNativeInterface* const toolkit = QGuiApplication::platformNativeInterface();
    void* const display = toolkit ? toolkit->nativeResourceForIntegration("wl_display") : nullptr;
    return display ? new WaylandLayerShell(*static_cast<wl_display*>(display)) : nullptr;
}
