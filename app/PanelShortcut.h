#pragma once

#include <QString>

#include <functional>

class QObject;
class QWidget;

namespace varno {

/// What the panel's screens need to know of the shortcut that opens it.
struct PanelShortcut {
    std::function<QString()> label; ///< as it is shown; empty when there is none that works
    /// Has it told, as long as the receiver lives, that the label may be another one.
    std::function<void(QObject& receiver, const std::function<void()>& action)> onLabelChange;
    // The caller owns these.
    std::function<QWidget*()> makeRecorder;
    std::function<QWidget*()> makeNotice; ///< says that the system has refused it
};

} // namespace varno
