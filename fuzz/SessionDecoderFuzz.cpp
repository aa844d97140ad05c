#include "core/SessionCodec.h"
#include "fuzz/Check.h"

#include <cstddef>
#include <cstdint>

// History files of any bytes.

using namespace varno;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto sessions = decodeSessions(
        QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    if (!sessions)
        return 0;
    const auto again = decodeSessions(encodeSessions(sessions->sessions));
    fuzz::check(again && again->refused == 0 && again->sessions == sessions->sessions,
                "a history written reads back");
    return 0;
}
