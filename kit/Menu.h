#pragma once

class QMenu;
class QWidget;

namespace varno {

/// Gives a menu the colours and the font of the screen that `owner` is on, and lets it go when it
/// is closed.
void setUpMenu(QMenu& menu, const QWidget& owner);

} // namespace varno
