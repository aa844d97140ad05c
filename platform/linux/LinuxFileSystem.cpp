#include "platform/posix/FileSystem.h"

#include <unistd.h>

namespace varno {

int flushToMedium(int descriptor)
{
    return ::fsync(descriptor);
}

timespec changeTime(const struct stat& status)
{
    return status.st_mtim;
}

} // namespace varno
