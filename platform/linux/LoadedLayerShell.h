#pragma once

#include "platform/linux/LayerShell.h"

namespace varno {

/// Decides, before there is an application object, whether windows are shown as layers, and
/// prepares the toolkit for it: where there is a Wayland compositor that is the better for it.
[[nodiscard]] bool chooseLayers();

/// That of varno-layer-shell.so; null if windows are not shown as layers. Made at the first use,
/// when there is an application object.
[[nodiscard]] LayerShell* layerShell();

} // namespace varno
