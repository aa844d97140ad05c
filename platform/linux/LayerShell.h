#pragma once

#include <QByteArray>
#include <Qt>

#include <functional>

class QWindow;

namespace varno {

struct KeyboardWatcher {
    std::function<void(const QByteArray&)> keymap; ///< as xkbcommon reads it
    std::function<void(quint32)> layout;           ///< its number in the keymap
};

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

    /// Tells of the keyboard, as long as this lives: what is known at once, and what changes.
    virtual void watchKeyboard(KeyboardWatcher watcher) = 0;
};

} // namespace varno
