#pragma once

namespace varno {

/// While there is one, other programs of the user may look at this process, also where it keeps its
/// secrets: the desktop's portal wants to see who calls it first, and refuses whom it cannot. Any
/// thread.
class ProcessVisibility {
public:
    ProcessVisibility();
    ~ProcessVisibility();
    ProcessVisibility(const ProcessVisibility&) = delete;
    ProcessVisibility& operator=(const ProcessVisibility&) = delete;
};

} // namespace varno
