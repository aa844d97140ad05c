#pragma once

#include "platform/UserAction.h"

#include <QByteArray>

#include <functional>

class QObject;

namespace varno {

/// What a desktop gives along when it starts a program, or calls one that runs, for its user.
struct ActivationMarks {
    QByteArray startupId{};       ///< of start-up notification on an X server
    QByteArray activationToken{}; ///< of activation on Wayland

    /// The one that the window system in use understands. There is an application with windows.
    [[nodiscard]] UserAction action() const;
};

/// How this process was started.
struct LaunchContext {
    enum class Panel : quint8 {
        whereNeeded, ///< by hand: the panel shows where nothing else would
        shown,       ///< from a menu
        hidden,      ///< with the session, or by a bus that has more to say
    };
    Panel panel = Panel::whereNeeded;
    ActivationMarks marks{};
};

/// Takes it out of the environment, so that children are not started like this. To be called while
/// there is no other thread, and before there is an application.
[[nodiscard]] LaunchContext takeLaunchContext();

/// Calls `action`, from the event loop and while `context` lives, each time that the user starts
/// the program again and the system tells the one that runs. Where a second process tells it,
/// never.
void onStartedAgain(QObject& context, const std::function<void()>& action);

} // namespace varno
