#pragma once

#include <cstdlib>
#include <memory>

namespace varno {

/// What the functions of xcb return, and the caller has to free.
struct XcbFree {
    void operator()(void* memory) const { std::free(memory); } // NOLINT(*-no-malloc): xcb's own
};
template <typename Reply>
using XcbReply = std::unique_ptr<Reply, XcbFree>;

} // namespace varno
