#pragma once

#include "kit/Theme.h"

#include <QFont>

class QPainter;
class QRectF;

namespace varno {

/// Our own drawings, on one grid and of one hand. Each is the file of its name in assets/symbols.
enum class Symbol {
    arrowClockwise,
    arrowUpLeft,
    bookClosedFill,
    checkmark,
    checkmarkCircleFill,
    chevronDown,
    chevronLeft,
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

/// How a symbol looks. It fills a square whose side is its size.
struct SymbolStyle {
    double size = 13; ///< points
    QFont::Weight weight = QFont::Normal;
    InkRole role = ColorRole::text;
    double opacity = 1;
};

/// Draws a symbol as large as `box` allows, in its middle, in whole device pixels. A heavier weight
/// is a thicker line. Main thread only.
void drawSymbol(QPainter& painter, Symbol symbol, const QRectF& box, const QColor& color,
                QFont::Weight weight = QFont::Normal);

} // namespace varno
