#pragma once

#include <QDir>
#include <QFileInfo>

namespace varno {

/// Whether the environment names a compositor's socket, and it is there.
[[nodiscard]] inline bool hasWaylandCompositor()
{
    const QString socket = qEnvironmentVariable("WAYLAND_DISPLAY");
    return !socket.isEmpty() &&
           QFileInfo::exists(
               QDir(qEnvironmentVariable("XDG_RUNTIME_DIR")).absoluteFilePath(socket));
}

} // namespace varno
