#include "platform/LaunchContext.h"
#include "platform/macos/ActionTarget.h"

#include <QPointer>

namespace varno {

UserAction ActivationMarks::action() const
{
    return {};
}

LaunchContext takeLaunchContext()
{
    return {};
}

/// Once the event loop runs: before, the system's own handler would take its place.
void onStartedAgain(QObject& context, const std::function<void()>& action)
{
    const auto install = [weak = QPointer(&context), action] {
        static VarnoActionTarget* const target =
            [[VarnoActionTarget alloc] initWithAction:[=] { weak ? action() : void(); }];
        [NSAppleEventManager.sharedAppleEventManager setEventHandler:target
                                                         andSelector:@selector(reopen:reply:)
                                                       forEventClass:'aevt'
                                                          andEventID:'rapp'];
    };
    QMetaObject::invokeMethod(&context, install, Qt::QueuedConnection);
}

} // namespace varno
