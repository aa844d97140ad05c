#pragma once

#include "platform/HotKeyEvents.h"

#include <QObject>

namespace varno {

/// One shortcut that the desktop has been asked for, as long as it lives.
class DesktopShortcut : public QObject {
    Q_OBJECT

public:
    /// Lets go of the combination for a while, where a desktop can do that.
    virtual void setPaused(bool /*paused*/) {}

Q_SIGNALS:
    // Whoever is told may destroy this.

    /// What the desktop has made of it; again whenever that changes.
    void answered(const varno::HotKeyBinding& binding);
    /// At the window system's time.
    void pressed(quint64 time);
    void released(quint64 time);
};

} // namespace varno
