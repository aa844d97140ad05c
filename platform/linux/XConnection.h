#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace varno {

struct XFree {
    void operator()(void* reply) const { std::free(reply); } // NOLINT: as libxcb asks for
};
template <typename Reply>
using XReply = std::unique_ptr<Reply, XFree>;

/// The toolkit's connection to the X server; null where it has none. Main thread only.
[[nodiscard]] xcb_connection_t* xConnection();

/// Waits for the X server the first time.
[[nodiscard]] xcb_atom_t xAtom(const char* name);

} // namespace varno
