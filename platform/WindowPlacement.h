#pragma once

#include <QtGlobal>

class QWindow;

namespace varno {

/// Whether there is a screen that windows can be opened on. To be asked before there is an
/// application object, which would end the process.
[[nodiscard]] bool hasDisplay();

/// Has windows opened where the program may place them, if there is such a place: in a Wayland
/// session by the X server beside it. To be called before there is an application object; what the
/// user's environment says of it stands.
void preferPlaceableWindows();

/// Makes it a panel: above other windows, on every desktop, in no list of windows. Before every
/// showing, since the desktop forgets it when the window is hidden. The window has been created.
void prepareFloatingPanel(QWindow& window);

/// Gives a window the keyboard on the user's behalf. `time` is the window system's time of what the
/// user did, 0 if that is not known.
void activateForUser(QWindow& window, quint32 time);

} // namespace varno
