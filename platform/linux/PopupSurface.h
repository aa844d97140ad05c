#pragma once

#include "platform/linux/SurfaceRole.h"

namespace varno {

/// A menu or a tool tip: near its parent's place for it, and on the screen. The compositor closes a
/// menu when somebody clicks elsewhere.
class PopupSurface final : public SurfaceRole {
    Q_OBJECT

public:
    using SurfaceRole::SurfaceRole;
    ~PopupSurface() override;

    void adopt(xdg_popup& /*popup*/) override {} // has been told
    [[nodiscard]] xdg_surface* popupParent() const override { return m_surface.get(); }

protected:
    [[nodiscard]] bool take(wl_surface& surface, wl_event_queue& queue) override;
    void drop() override;

private:
    [[nodiscard]] WaylandOwned<xdg_positioner> positioner(const QWindow& parent) const;
    void listen();

    WaylandOwned<xdg_surface> m_surface;
    WaylandOwned<xdg_popup> m_popup; ///< goes before its surface
    bool m_isAnswered = false;
};

} // namespace varno
