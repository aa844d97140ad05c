#pragma once

#include "platform/linux/LayerShell.h"
#include "platform/linux/SurfaceRole.h"
#include "platform/linux/WaylandKeyboard.h"
#include "platform/linux/WaylandPointer.h"

#include <memory>

namespace varno {

/// Through wlr-layer-shell, with surfaces that the toolkit draws on.
class WaylandLayerShell final : public QObject, public LayerShell {
    Q_OBJECT

public:
    /// `display` is the toolkit's connection, to a compositor that has layers.
    explicit WaylandLayerShell(wl_display& display);

    void adopt(QWindow& window) override;
    void activate(QWindow& window) override;
    void startMove(QWindow& window) override;
    void startResize(QWindow& window, Qt::Edges edges) override;
    [[nodiscard]] bool isPointerPressed() const override { return m_pointer->isPressed(); }
    void watchKeyboard(KeyboardWatcher watcher) override;

    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void shareKeyboard();

    WaylandShells m_shells;
    std::unique_ptr<WaylandPointer> m_pointer;
    std::unique_ptr<WaylandKeyboard> m_keyboard;
};

} // namespace varno
