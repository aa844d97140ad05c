#include "platform/Threads.h"

#include <sys/resource.h>

namespace varno {

void lowerThreadPriority()
{
    constexpr int niceness = 10;
    ::setpriority(PRIO_PROCESS, 0, niceness); // on Linux, 0 is the calling thread alone
}

} // namespace varno
