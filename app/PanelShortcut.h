#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace varno {

/// What the panel's screens need to know of the shortcut that opens it.
struct PanelShortcut {
    std::function<QString()> label; ///< as it is shown; empty when there is none that works
    // The caller owns these.
    std::function<QWidget*()> makeRecorder;
    std::function<QWidget*()> makeNotice; ///< says that the system has refused it
};

} // namespace varno
