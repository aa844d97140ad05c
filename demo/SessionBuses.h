#pragma once

namespace varno {

/// Stays on the session bus that the process was started with for the key ring alone; for all else
/// goes over to the one that `VARNO_DESKTOP_BUS` names, where the status area is. Without such a
/// name nothing changes. To be called before anything uses either.
void separateKeyRingFromDesktop();

} // namespace varno
