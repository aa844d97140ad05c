#include "core/SessionCodec.h"
#include "fuzz/Check.h"

#include <cstddef>
#include <cstdint>

// History files of any bytes.

using namespace varno;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto sessions = decodeSessions({reinterpret_cast<const char*>(data), size});
    if (!sessions)
        return 0;
    const QByteArray encoded = encodeSessions(*sessions);
    const auto again = decodeSessions({encoded.data(), static_cast<std::size_t>(encoded.size())});
    fuzz::check(again == sessions, "a history written reads back");
    return 0;
}
