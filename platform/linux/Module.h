#pragma once

namespace varno {
class HttpSession;
class KeyStore;
} // namespace varno

/// The one function of each module: makes its backend, which belongs to the caller.
extern "C" {
varno::HttpSession* varnoMakeHttpSession();
varno::KeyStore* varnoMakeKeyStore();
}
