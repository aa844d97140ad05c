#include "platform/linux/LoadedLayerShell.h"

#include "platform/linux/LoadedBackends.h"
#include "platform/linux/Module.h"
#include "platform/linux/WaylandSocket.h"

namespace varno {
namespace {

bool& areLayersChosen()
{
    static bool chosen = false;
    return chosen;
}

template <typename Function>
Function* moduleFunction(const char* name)
{
    static ModuleFile module("varno-layer-shell.so");
    return reinterpret_cast<Function*>(module.function(name));
}

} // namespace

bool chooseLayers()
{
    if (!hasWaylandCompositor())
        return false;
    const auto recommends =
        moduleFunction<decltype(varnoRecommendsLayers)>("varnoRecommendsLayers");
    if (!recommends || !recommends())
        return false;
    qputenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT",
            "1"); // surfaces without a role, where asked for
    areLayersChosen() = true;
    return true;
}

LayerShell* layerShell()
{
    // NOLINTNEXTLINE(*-non-const-global-variables): made once, with the connection to the screen
    static LayerShell* const shell = []() -> LayerShell* {
        if (!areLayersChosen())
            return nullptr;
        const auto make = moduleFunction<decltype(varnoMakeLayerShell)>("varnoMakeLayerShell");
        return make ? make() : nullptr;
    }();
    return shell;
}

} // namespace varno
