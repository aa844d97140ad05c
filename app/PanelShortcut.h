#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace varno {

/// What the panel's screens need to know of the shortcut that opens it.
struct PanelShortcut {
    std::function<QString()> label;         ///< as it is shown; empty when there is none
    std::function<QWidget*()> makeRecorder; ///< the caller owns it
};

} // namespace varno
