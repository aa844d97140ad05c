#pragma once

#include <functional>

namespace varno {

/// Calls an action if the process exits during its lifetime, as the toolkit does when the window
/// system is gone: then no function returns. One at a time.
class AtExit {
public:
    /// What `action` needs is constructed before, and so outlives the call.
    explicit AtExit(std::function<void()> action);
    ~AtExit();
    AtExit(const AtExit&) = delete;
    AtExit& operator=(const AtExit&) = delete;
};

} // namespace varno
