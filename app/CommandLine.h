#pragma once

#include <optional>

namespace varno {

/// Answers what the program was asked on its command line, if it was asked anything: its exit
/// status then. Nothing if it is to start. There is no application object by then.
[[nodiscard]] std::optional<int> answerCommandLine(int argc, char** argv);

} // namespace varno
