#pragma once

#include <QtGlobal>

#include <optional>
#include <vector>

namespace varno {

class XcbConnection;

/// Which of the eight modifiers of X mean what, as the server's modifier map has it now.
struct XcbModifierMap {
    quint16 capsLock = 0;
    quint16 numLock = 0;
    quint16 option = 0;  ///< Alt
    quint16 command = 0; ///< Super

    /// Waits for the server; a modifier that no key sets is 0.
    static XcbModifierMap read(XcbConnection& connection);

    /// The modifiers of X for a Carbon mask; nothing if the keyboard lacks one of them.
    [[nodiscard]] std::optional<quint16> mask(int carbonModifiers) const;
    /// Every state that the locks can be in.
    [[nodiscard]] std::vector<quint16> lockVariants() const;
    /// The modifiers that people hold down, out of the state of an event.
    [[nodiscard]] quint16 held(quint16 state) const;

    friend bool operator==(const XcbModifierMap&, const XcbModifierMap&) = default;
};

} // namespace varno
