#include "platform/linux/LoadedLayerShell.h"

#include "platform/linux/LoadedBackends.h"
#include "platform/linux/Module.h"
#include "platform/linux/WaylandSocket.h"

#include <QGuiApplication>

namespace varno {
namespace {

constexpr const char* layerModule = "varno-layer-shell.so";

bool& areLayersChosen()
{
    static bool chosen = false;
    return chosen;
}

template <typename Function>
Function* moduleFunctionAs(const char* name)
{
    return reinterpret_cast<Function*>(moduleFunction(layerModule, name));
}

} // namespace

bool chooseLayers()
{
    if (!hasWaylandCompositor())
        return false;
    const auto recommends =
        moduleFunctionAs<decltype(varnoRecommendsLayers)>("varnoRecommendsLayers");
    if (!recommends || !recommends())
        return false;
    qputenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT",
            "1"); // surfaces without a role, where asked for
    areLayersChosen() = true;
    return true;
}

LayerShell* layerShell()
{
    static LayerShell* const shell = []() -> LayerShell* {
        if (!areLayersChosen() || !QGuiApplication::platformName().startsWith(u"wayland"))
            return nullptr;
        const auto make = moduleFunctionAs<decltype(varnoMakeLayerShell)>("varnoMakeLayerShell");
        return make ? make() : nullptr;
    }();
    return shell;
}

} // namespace varno
