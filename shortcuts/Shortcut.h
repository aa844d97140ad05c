#pragma once

#include "platform/Key.h"
#include "platform/Keyboard.h"

#include <QFlags>
#include <QHashFunctions>

namespace varno {

/// Modifiers in the encoding of key events.
enum class Modifier : quint32 {
    capsLock = 0x10000,
    shift = 0x20000,
    control = 0x40000,
    option = 0x80000,
    command = 0x100000,
    function = 0x800000,
};
Q_DECLARE_FLAGS(Modifiers, Modifier)
Q_DECLARE_OPERATORS_FOR_FLAGS(Modifiers)

/// Converts Shift, Control, Option, Command and Function; every other bit is dropped.
[[nodiscard]] Modifiers modifiersOf(int carbonModifiers);
[[nodiscard]] int carbonModifiersOf(Modifiers modifiers);

/// A key with its modifiers.
class Shortcut {
public:
    constexpr Shortcut(int carbonKeyCode, int carbonModifiers)
        : m_carbonKeyCode(carbonKeyCode)
        , m_carbonModifiers(carbonModifiers)
    {
    }
    Shortcut(Key key, Modifiers modifiers);

    [[nodiscard]] int carbonKeyCode() const { return m_carbonKeyCode; }
    [[nodiscard]] int carbonModifiers() const { return m_carbonModifiers; }
    [[nodiscard]] Modifiers modifiers() const { return modifiersOf(m_carbonModifiers); }

    /// The display form, like "⌥⌘F". A character key is shown as what it types on `keyboard`.
    [[nodiscard]] QString description(const Keyboard& keyboard) const;

    friend bool operator==(const Shortcut&, const Shortcut&) = default;

private:
    int m_carbonKeyCode;
    int m_carbonModifiers;
};

[[nodiscard]] inline std::size_t qHash(const Shortcut& shortcut, std::size_t seed = 0)
{
    return qHashMulti(seed, shortcut.carbonKeyCode(), shortcut.carbonModifiers());
}

} // namespace varno
