#pragma once

class QWidget;

namespace varno {

/// Draws the ground and the frame of a field to type into, as large as the widget. To be called
/// while that is painted.
void paintFieldFrame(QWidget& field, bool isActive);

} // namespace varno
