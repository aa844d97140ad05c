#pragma once

#include "platform/linux/WaylandOwned.h"

#include <QObject>
#include <QPointF>

namespace varno {

/// The pointer on surfaces of this program, as the compositor reports it; the toolkit hears of it
/// as well.
class WaylandPointer final : public QObject {
    Q_OBJECT

public:
    /// The seat outlives this.
    WaylandPointer(wl_seat& seat, WaylandOwned<zwp_relative_pointer_manager_v1> motions);

    /// Of the left button.
    [[nodiscard]] bool isPressed() const { return m_isPressed; }
    /// On the surface.
    [[nodiscard]] QPointF position() const { return m_position; }

    /// Motions are told while the button is down that is down now.
    void tellMotions();

Q_SIGNALS:
    /// On the screen, whatever the surface does. Motions against its edge are told, too.
    void moved(const QPointF& way);
    /// Or it is lost.
    void released();
    /// Surfaces of this program, all of them.
    void entered();
    void left();

private:
    void listen();
    void setPressed(bool isPressed);
    void setInside(bool isInside);

    wl_seat& m_seat;
    WaylandOwned<zwp_relative_pointer_manager_v1> m_motions;
    WaylandOwned<wl_pointer> m_pointer; ///< none without such a device
    WaylandOwned<zwp_relative_pointer_v1> m_motion;
    QPointF m_position;
    bool m_isPressed = false;
    bool m_isInside = false;
    bool m_isToldInside = false;
};

} // namespace varno
