#pragma once

#include <QtGlobal>

#include <optional>

namespace varno {

/// X counts the kernel's key codes from 8.
inline constexpr int firstXKeyCode = 8;

/// The X key code of a key's place on the keyboard; nothing for a key that there is not.
[[nodiscard]] std::optional<quint8> xKeyCode(int carbonKeyCode);

/// The other way round. Nothing for modifiers and keys that Carbon has no code for.
[[nodiscard]] std::optional<int> carbonKeyCodeOf(quint32 xKeyCode);

} // namespace varno
