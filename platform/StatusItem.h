#pragma once

#include "platform/UserAction.h"

#include <QObject>

#include <functional>

class QIcon;

namespace varno {

/// The program's icon in the desktop's status area. It is there whenever the desktop has such an
/// area, also one that comes later than the program. Main thread only.
class StatusItem : public QObject {
    Q_OBJECT

Q_SIGNALS:
    void activated(const varno::UserAction& action); ///< once for each click
};

/// Makes the program one of those that live in the status area alone: it is in no list of programs
/// and has no menu bar. There is an application with windows, and no icon yet.
void becomeAccessory();

/// Asks the desktop whether it has a status area that shows icons now. The answer comes from the
/// event loop, once, unless the context is gone by then. A bus that is not there is no area.
void askForStatusArea(QObject& context, std::function<void(bool)> answer);

} // namespace varno
