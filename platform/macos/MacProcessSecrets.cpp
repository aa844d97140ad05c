#include "platform/ProcessSecrets.h"

#include <sys/resource.h>

#include <cstdlib>

namespace varno {

/// That other programs do not look is the system's to see to: the program is signed for the
/// hardened runtime.
void keepSecrets()
{
    ::unsetenv("SSLKEYLOGFILE"); // libraries of TLS write there
#ifdef NDEBUG
    constexpr rlimit none = {.rlim_cur = 0, .rlim_max = 0};
    ::setrlimit(RLIMIT_CORE, &none);
#endif
}

} // namespace varno
