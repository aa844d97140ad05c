#pragma once

#include "platform/UserAction.h"

#include <QObject>

class QIcon;

namespace varno {

/// The program's icon in the desktop's status area. It is there whenever the desktop has such an
/// area, also one that comes later than the program. Main thread only.
class StatusItem : public QObject {
    Q_OBJECT

Q_SIGNALS:
    void activated(const varno::UserAction& action); ///< once for each click
};

} // namespace varno
