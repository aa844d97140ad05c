#pragma once

#include "platform/linux/WaylandOwned.h"

#include <QObject>

class QWindow;

namespace varno {

/// What all roles need of the compositor; it is there as long as the application.
struct WaylandShells {
    wl_display* display = nullptr; ///< the toolkit's
    WaylandOwned<zwlr_layer_shell_v1> layers;
    WaylandOwned<xdg_wm_base> popups;
    WaylandOwned<wl_seat> seat; ///< the first
};

/// What the surface of a window is on the screen, at each of its showings; the window's child. The
/// toolkit makes a surface without a role, and draws on it.
///
/// A compositor gives a surface one role, and wants it gone before the surface. So the window gets
/// another surface for each showing.
class SurfaceRole : public QObject {
    Q_OBJECT

public:
    /// The window has been created, and is not shown.
    SurfaceRole(QWindow& window, const WaylandShells& shells);

    /// That of a window, or null.
    [[nodiscard]] static SurfaceRole* of(const QWindow* window);

    /// Makes `popup` one of this. It has not been shown yet.
    virtual void adopt(xdg_popup& popup) = 0;
    /// What a pop-up is told to be its parent when it is made; null if it is told later.
    [[nodiscard]] virtual xdg_surface* popupParent() const { return nullptr; }

    bool eventFilter(QObject* object, QEvent* event) override;

protected:
    /// Takes the role and waits for the compositor's answer; false if it gives none. Events come in
    /// `queue` until then, and in the connection's own afterwards.
    [[nodiscard]] virtual bool take(wl_surface& surface, wl_event_queue& queue) = 0;
    virtual void drop() = 0;

    [[nodiscard]] QWindow& window() const { return m_window; }
    [[nodiscard]] const WaylandShells& shells() const { return m_shells; }
    /// The toolkit's, null while there is none.
    [[nodiscard]] wl_surface* surface() const;
    /// Lets events be dealt with until `answered`, but not for ever.
    [[nodiscard]] bool wait(wl_event_queue& queue, const bool& answered) const;
    /// Later, from the event loop: as if the user had closed it.
    void closeWindow();

private:
    void show();
    void hide();

    QWindow& m_window;
    const WaylandShells& m_shells;
};

/// Stands for an object of the protocol, so that what it makes has its events in `queue`.
template <typename Object>
class Within {
public:
    Within(Object& object, wl_event_queue& queue)
        : m_wrapper(static_cast<Object*>(wl_proxy_create_wrapper(&object)))
    {
        wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(m_wrapper), &queue);
    }
    ~Within() { wl_proxy_wrapper_destroy(m_wrapper); }
    Q_DISABLE_COPY_MOVE(Within)

    [[nodiscard]] Object* get() const { return m_wrapper; }

private:
    Object* m_wrapper;
};

/// Its events come in the connection's own queue from now on.
template <typename Object>
void leaveQueue(Object* object)
{
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(object), nullptr);
}

} // namespace varno
