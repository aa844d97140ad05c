#include "app/AtExit.h"

#include <cstdlib>
#include <utility>

namespace varno {
namespace {

std::function<void()>& pending()
{
    static std::function<void()> action;
    return action;
}

void runPending()
{
    if (const std::function<void()> action = std::exchange(pending(), {}))
        action();
}

} // namespace

AtExit::AtExit(std::function<void()> action)
{
    pending() = std::move(action);
    static_cast<void>(std::atexit(&runPending)); // runs before what was made earlier ends
}

AtExit::~AtExit()
{
    pending() = {};
}

} // namespace varno
