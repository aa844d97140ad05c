#include "platform/linux/WaylandPointer.h"

#include <linux/input-event-codes.h>

#include <utility>

namespace varno {
namespace {

QPointF pointOf(wl_fixed_t x, wl_fixed_t y)
{
    return {wl_fixed_to_double(x), wl_fixed_to_double(y)};
}

} // namespace

WaylandPointer::WaylandPointer(wl_seat& seat, WaylandOwned<zwp_relative_pointer_manager_v1> motions)
    : m_seat(seat)
    , m_motions(std::move(motions))
{
    // These listeners have what the first version of the seat tells, and no more.
    static constexpr wl_seat_listener listener = {
        .capabilities =
            [](void* pointer, wl_seat*, quint32 capabilities) {
                auto& self = *static_cast<WaylandPointer*>(pointer);
                self.setPressed(false);
                self.m_pointer.reset();
                if ((capabilities & WL_SEAT_CAPABILITY_POINTER) != 0)
                    self.listen();
            },
        .name = nullptr,
    };
    wl_seat_add_listener(&seat, &listener, this);
}

void WaylandPointer::listen()
{
    static constexpr auto move = [](void* pointer, wl_fixed_t x, wl_fixed_t y) {
        static_cast<WaylandPointer*>(pointer)->m_position = pointOf(x, y);
    };
    static constexpr auto enter = [](void* pointer, wl_pointer*, quint32, wl_surface*, wl_fixed_t x,
                                     wl_fixed_t y) {
        static_cast<WaylandPointer*>(pointer)->setInside(true);
        move(pointer, x, y);
    };
    static constexpr auto setPressed = [](void* pointer, bool isPressed) {
        static_cast<WaylandPointer*>(pointer)->setPressed(isPressed);
    };
    static constexpr wl_pointer_listener listener = [] {
        wl_pointer_listener told = {};
        told.enter = enter;
        told.leave = [](void* pointer, wl_pointer*, quint32, wl_surface*) {
            setPressed(pointer, false);
            static_cast<WaylandPointer*>(pointer)->setInside(false);
        };
        told.motion = [](void* pointer, wl_pointer*, quint32, wl_fixed_t x, wl_fixed_t y) {
            move(pointer, x, y);
        };
        told.button = [](void* pointer, wl_pointer*, quint32, quint32, quint32 button,
                         quint32 state) {
            if (button == BTN_LEFT)
                setPressed(pointer, state == WL_POINTER_BUTTON_STATE_PRESSED);
        };
        told.axis = [](void*, wl_pointer*, quint32, quint32, wl_fixed_t) {};
        return told;
    }();
    m_pointer.reset(wl_seat_get_pointer(&m_seat));
    wl_pointer_add_listener(m_pointer.get(), &listener, this);
}

/// Later, since the next event tells whether it goes from one surface to another.
void WaylandPointer::setInside(bool isInside)
{
    m_isInside = isInside;
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (m_isInside == std::exchange(m_isToldInside, m_isInside))
                return;
            if (m_isInside)
                Q_EMIT entered();
            else
                Q_EMIT left();
        },
        Qt::QueuedConnection);
}

void WaylandPointer::tellMotions()
{
    if (!m_pointer || !m_isPressed)
        return;
    static constexpr zwp_relative_pointer_v1_listener listener = {
        .relative_motion = [](void* pointer, zwp_relative_pointer_v1*, quint32, quint32,
                              wl_fixed_t x, wl_fixed_t y, wl_fixed_t, wl_fixed_t) {
            Q_EMIT static_cast<WaylandPointer*>(pointer)->moved(pointOf(x, y));
        }};
    m_motion.reset(
        zwp_relative_pointer_manager_v1_get_relative_pointer(m_motions.get(), m_pointer.get()));
    zwp_relative_pointer_v1_add_listener(m_motion.get(), &listener, this);
}

void WaylandPointer::setPressed(bool isPressed)
{
    m_isPressed = isPressed;
    if (isPressed)
        return;
    m_motion.reset();
    Q_EMIT released();
}

} // namespace varno
