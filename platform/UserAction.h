#pragma once

#include <QByteArray>

namespace varno {

/// What the user has just done, as the window system knows it: a window is given the keyboard for
/// it.
struct UserAction {
    quint32 time = 0;   ///< the window system's time of it, 0 if that is not known
    QByteArray token{}; ///< the desktop's word for it, which works once; empty if there is none
};

} // namespace varno
