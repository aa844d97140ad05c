#include "platform/posix/FileSystem.h"

#include <fcntl.h>
#include <unistd.h>

namespace varno {

int flushToMedium(int descriptor)
{
    // What fsync writes may wait in the drive. Some file systems know nothing better.
    const int flushed = ::fcntl(descriptor, F_FULLFSYNC);
    return flushed >= 0 ? flushed : ::fsync(descriptor);
}

timespec changeTime(const struct stat& status)
{
    return status.st_mtimespec;
}

} // namespace varno
