#pragma once

namespace varno {
class HttpSession;
class KeyStore;
class LayerShell;
} // namespace varno

/// Each module makes its backend, which belongs to the caller.
extern "C" {
varno::HttpSession* varnoMakeHttpSession();
varno::KeyStore* varnoMakeKeyStore();

/// Asks the compositor that the environment names, before there is an application object, whether
/// windows are better shown as its layers.
bool varnoRecommendsLayers();
/// Belongs to the application object. Null if the toolkit is not connected to a compositor.
varno::LayerShell* varnoMakeLayerShell();
}
