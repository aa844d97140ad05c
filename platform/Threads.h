#pragma once

namespace varno {

/// Lets the calling thread give way to those that the user waits for.
void lowerThreadPriority();

} // namespace varno
