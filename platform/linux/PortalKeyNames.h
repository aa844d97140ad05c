#pragma once

#include <QString>

namespace varno {

class Keyboard;

/// The name of a key among the keysyms: of what it types on `keyboard`, or on an American one if
/// that is not known or no Latin letter, since desktops look for shortcuts by those. The key is one
/// that `xKeyCode` knows.
[[nodiscard]] QString keysymName(int carbonKeyCode, const Keyboard& keyboard);

} // namespace varno
