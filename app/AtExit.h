#pragma once

#include <functional>

namespace varno {

/// Has something done if the process exits while this is there, as the toolkit makes it do when the
/// window system is gone: nothing returns to its caller then. One at a time.
class AtExit {
public:
    /// What `action` needs has been made by then, and so outlives the call.
    explicit AtExit(std::function<void()> action);
    ~AtExit();
    AtExit(const AtExit&) = delete;
    AtExit& operator=(const AtExit&) = delete;
};

} // namespace varno
