#include "platform/ProcessSecrets.h"
#include "platform/Threads.h"
#include "platform/posix/FileSystem.h"

#include <fcntl.h>
#include <pthread/qos.h>
#include <sys/resource.h>
#include <unistd.h>

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

void lowerThreadPriority()
{
    pthread_set_qos_class_self_np(QOS_CLASS_UTILITY, 0);
}

int flushToMedium(int descriptor)
{
    // What fsync writes may wait in the drive. Some file systems know nothing better.
    return ::fcntl(descriptor, F_FULLFSYNC) >= 0 ? 0 : ::fsync(descriptor);
}

timespec changeTime(const struct stat& status)
{
    return status.st_mtimespec;
}

} // namespace varno
