#pragma once

#include <QtGlobal>

#include <optional>

namespace varno {

/// The X key code of a key's place on the keyboard; nothing for a key that there is not.
[[nodiscard]] std::optional<quint8> xKeyCode(int carbonKeyCode);

/// The other way round. Nothing for modifiers and keys that Carbon has no code for.
[[nodiscard]] std::optional<int> carbonKeyCodeOf(quint32 xKeyCode);

} // namespace varno
