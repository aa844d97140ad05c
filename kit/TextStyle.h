#pragma once

#include "kit/TextLimits.h"
#include "kit/Theme.h"

#include <QFont>

namespace varno {

enum class FontDesign { system, serif };

/// The look of a text of the interface. A point is a device-independent pixel.
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

/// The font of a style, its size rounded to whole points. It names no family for the system's
/// design, so that it follows the application's font. `TextBlock` lays out equal digits.
[[nodiscard]] QFont font(const TextStyle& style);

} // namespace varno
