#pragma once

#include <xcb/xcb.h>

namespace varno {

/// The toolkit's connection to the X server; null where it has none. Main thread only.
[[nodiscard]] xcb_connection_t* xConnection();

/// Waits for the X server the first time.
[[nodiscard]] xcb_atom_t xAtom(const char* name);

} // namespace varno
