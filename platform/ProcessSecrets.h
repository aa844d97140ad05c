#pragma once

namespace varno {

/// Keeps to this process what it holds: the keys of TLS connections go to no file, whatever the
/// environment asks for, and in a release build its memory goes to none when it crashes, nor to
/// other programs of the same user. The first thing that `main` does, before there is a thread.
void keepSecrets();

} // namespace varno
