#pragma once

#include "kit/Theme.h"

#include <QFont>

class QPainter;
class QRectF;

namespace varno {

/// The symbols of the interface; each is drawn in the file of its name in assets/symbols.
enum class Symbol {
    arrowClockwise,
    arrowUpLeft,
    bookClosedFill,
    checkmark,
    checkmarkCircleFill,
    chevronDown,
    chevronRight,
    chevronUp,
    chevronUpChevronDown,
    clock,
    docTextMagnifyingGlass,
    exclamationmarkTriangle,
    gearshape,
    house,
    magnifyingGlass,
    xmark,
    xmarkCircleFill,
};

/// The look of a symbol, which fills a square of `size`.
struct SymbolStyle {
    double size = 13; ///< points
    QFont::Weight weight = QFont::Normal;
    InkRole role = ColorRole::text;
    double opacity = 1;
};

/// Draws a symbol centred in `box`, as large as fits, in whole device pixels. A heavier weight has
/// thicker lines. Main thread only.
void drawSymbol(QPainter& painter, Symbol symbol, const QRectF& box, const QColor& color,
                QFont::Weight weight = QFont::Normal);

} // namespace varno
