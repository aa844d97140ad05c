#pragma once

#include <QStringView>

namespace varno {

/// The label of a key.
struct KeyLabel {
    QStringView text;         ///< empty for a code that is no key's
    bool isCharacter = false; ///< the text is the ANSI character: the user's layout goes first
};

[[nodiscard]] KeyLabel keyLabel(int carbonKeyCode);

} // namespace varno
