#include "platform/Resources.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <system_error>
#include <thread>

namespace varno {
namespace {

bool canOpenFiles()
{
    std::array<int, 16> held = {}; // twice as many as a question to the key ring was seen to take
    std::generate(held.begin(), held.end(),
                  [] { return ::open("/dev/null", O_RDONLY | O_CLOEXEC); });
    for (const int descriptor : held)
        ::close(descriptor); // or nothing, where there was none
    return held.back() >= 0;
}

bool canStartThread()
{
    try {
        const std::jthread trial([] {});
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

} // namespace

bool hasResources()
{
    return canOpenFiles() && canStartThread();
}

} // namespace varno
