#pragma once

class QWidget;

namespace varno {

/// Paints the background and the outline of a text field over all of `field`, from within its paint
/// event.
void paintFieldFrame(QWidget& field, bool isActive);

} // namespace varno
