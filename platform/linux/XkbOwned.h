#pragma once

#include <xkbcommon/xkbcommon.h>

#include <memory>

namespace varno {

struct XkbUnref {
    void operator()(xkb_context* owned) const { xkb_context_unref(owned); }
    void operator()(xkb_keymap* owned) const { xkb_keymap_unref(owned); }
    void operator()(xkb_state* owned) const { xkb_state_unref(owned); }
};
template <typename Object>
using XkbOwned = std::unique_ptr<Object, XkbUnref>;

} // namespace varno
