#pragma once

#include <Qt>

class QWindow;

namespace varno {

/// Shows the windows of the program as layers of a Wayland compositor's screen. Main thread only.
class LayerShell {
public:
    LayerShell() = default;
    virtual ~LayerShell() = default;
    Q_DISABLE_COPY_MOVE(LayerShell)

    /// Makes it a layer above all windows at each of its showings, and all windows that are created
    /// from now on as well: menus and tool tips as pop-ups of their parents.
    virtual void adopt(QWindow& window) = 0;

    /// Gives it the keyboard, if it is shown.
    virtual void activate(QWindow& window) = 0;

    /// Let the pointer do it until its button is up. The window is a layer.
    virtual void startMove(QWindow& window) = 0;
    virtual void startResize(QWindow& window, Qt::Edges edges) = 0;

    /// Of the pointer's left button.
    [[nodiscard]] virtual bool isPointerPressed() const = 0;
};

} // namespace varno
