#pragma once

#include <cstdio>
#include <cstdlib>

namespace varno::fuzz {

/// Ends the process, which is a finding, unless `holds`.
inline void check(bool holds, const char* claim)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", claim);
    std::abort();
}

} // namespace varno::fuzz
