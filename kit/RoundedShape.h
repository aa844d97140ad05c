#pragma once

#include <QBrush>

class QPainter;
class QPalette;
class QRectF;

namespace varno {

// Rectangles with rounded corners, painted smoothly. All lengths in points; the painter's pen and
// brush are others afterwards.

void fillRounded(QPainter& painter, const QRectF& place, double radius, const QColor& color);

/// Draws a line of `width` along the inside of the edge, whose corners have `radius`, and fills
/// `ground` within.
void outlineRounded(QPainter& painter, const QRectF& place, double radius, double width,
                    const QColor& color, const QBrush& ground = Qt::NoBrush);

/// Draws the ring round what has the keyboard's attention, in the accent of the theme.
void outlineFocus(QPainter& painter, const QRectF& place, double radius, const QPalette& palette);

/// Clips what is painted next to the inner side of the middle of such a line.
void clipRounded(QPainter& painter, const QRectF& place, double radius, double width);

} // namespace varno
