#pragma once

#include "kit/TextLimits.h"
#include "kit/Theme.h"

#include <QFont>

namespace varno {

enum class FontDesign { system, serif };

/// How a text of the interface looks. A point is a device-independent pixel.
struct TextStyle {
    double size = 13; ///< points
    QFont::Weight weight = QFont::Normal;
    FontDesign design = FontDesign::system;
    double tracking = 0;      ///< points added after each character
    bool equalDigits = false; ///< every digit as wide as the widest, whatever the font
    InkRole role = ColorRole::text;
    double opacity = 1;
    TextLimit limit = textLimit;
};

/// The style's font. Its size is rounded to whole points. The system's family is not named in it,
/// so that it stays the application's own. Equal digits are not the font's part: see `TextBlock`.
[[nodiscard]] QFont font(const TextStyle& style);

} // namespace varno
