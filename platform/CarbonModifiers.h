#pragma once

namespace varno::carbonModifier {

/// The bits of a Carbon modifier mask.
inline constexpr int command = 0x100;
inline constexpr int shift = 0x200;
inline constexpr int option = 0x800;
inline constexpr int control = 0x1000;
inline constexpr int function = 0x20000;

} // namespace varno::carbonModifier
