#pragma once

#include <sys/stat.h>

#include <ctime>

namespace varno {

// What systems of the kind of POSIX do in ways of their own.

/// Blocks until a file or folder is on its medium, where a loss of power leaves it. -1 and `errno`
/// if that fails, EINTR among its reasons.
[[nodiscard]] int flushToMedium(int descriptor);

/// When the content last changed.
[[nodiscard]] timespec changeTime(const struct stat& status);

} // namespace varno
