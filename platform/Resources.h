#pragma once

namespace varno {

/// Whether this process can still have the files, sockets and the thread that a request takes. To
/// be asked before one starts: there are libraries that end the process when they get none.
[[nodiscard]] bool hasResources();

} // namespace varno
