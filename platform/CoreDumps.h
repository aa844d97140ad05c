#pragma once

namespace varno {

/// Keeps the system from writing this process's memory to a file when it crashes.
void disableCoreDumps();

} // namespace varno
