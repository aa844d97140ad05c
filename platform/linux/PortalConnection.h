#pragma once

#include "platform/linux/DesktopService.h"

namespace varno {

/// The way to the desktop's portal, one for the whole process: it takes the id of an application
/// from the first call only, so nobody calls it before `ready`. Opening it starts a portal that is
/// not running.
class PortalConnection final : public DesktopService {
public:
    static const QString service;
    static const QString path;

    /// The one on the session bus.
    static PortalConnection& shared();

    explicit PortalConnection(Connector connector);

protected:
    void introduce() override;
};

} // namespace varno
