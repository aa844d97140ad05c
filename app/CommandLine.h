#pragma once

#include <optional>

namespace varno {

/// Answers what the program was asked on its command line, if it was asked anything: its exit
/// status then. Nothing if it is to start. Needs nothing of the program.
[[nodiscard]] std::optional<int> answerCommandLine(int argc, const char* const* argv);

} // namespace varno
