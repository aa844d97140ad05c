#pragma once

#include "platform/linux/SurfaceRole.h"

#include <QPointer>
#include <QRect>

#include <optional>

namespace varno {

/// A window above all others, on the output that is in use, on every workspace. It is centred, in
/// its parent if it has one, until it gets another place; that it keeps.
///
/// Compositors differ in which of two surfaces of one layer is above. So a parent goes to the layer
/// below while its child is shown.
class LayerSurface final : public SurfaceRole {
    Q_OBJECT

public:
    LayerSurface(QWindow& window, const WaylandShells& shells);
    ~LayerSurface() override;

    void adopt(xdg_popup& popup) override;

    /// Asks for the keyboard, and has it for itself.
    void activate();
    /// Lets other windows have it: the pointer has gone to them.
    void yieldKeyboard();
    /// Lets the user choose it for the keyboard: the pointer has come back.
    void offerKeyboard();

    /// Within the room that windows have on its output.
    [[nodiscard]] QRect place() const { return m_place; }
    [[nodiscard]] QSize leastSize() const;
    [[nodiscard]] QRect room() const { return {QPoint(), m_room}; }
    void setPlace(const QRect& place);
    /// Whether the compositor has not shown it yet where it was placed last.
    [[nodiscard]] bool isMoving() const { return m_moving != nullptr; }

Q_SIGNALS:
    /// It is where it was placed last.
    void arrived();

protected:
    [[nodiscard]] bool take(wl_surface& surface, wl_event_queue& queue) override;
    void drop() override;

private:
    void listen();
    void close();
    void loseScreen();
    void watchScreen();
    void showAgain();
    void choosePlace();
    void sendPlace();
    void configure(quint32 serial, const QSize& size);
    void arrive();
    void setLayer(zwlr_layer_shell_v1_layer layer);
    void setKeyboard(zwlr_layer_surface_v1_keyboard_interactivity interactivity);

    WaylandOwned<zwlr_layer_surface_v1> m_layer;
    WaylandOwned<wl_callback> m_moving;
    QPointer<LayerSurface> m_parent; ///< while it is shown
    bool m_isAnswered = false;       ///< with the room
    bool m_hasYielded = false;       ///< the keyboard
    bool m_isLost = false;   ///< with its screen, or where there is not the room for it any more
    bool m_isPlaced = false; ///< has the size that was asked for
    QMetaObject::Connection m_screenResized;
    QSize m_room;
    QRect m_place;
    std::optional<QPoint> m_chosenCorner; ///< the user's
};

} // namespace varno
