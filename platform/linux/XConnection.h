#pragma once

#include <xcb/xcb.h>

#include <initializer_list>

namespace varno {

/// The toolkit's connection to the X server; null where it has none. Main thread only.
[[nodiscard]] xcb_connection_t* xConnection();

/// Waits for the X server the first time.
[[nodiscard]] xcb_atom_t xAtom(const char* name);
/// Waits once for all of them that are not known yet, so that none is waited for later.
void fetchXAtoms(std::initializer_list<const char*> names);

} // namespace varno
