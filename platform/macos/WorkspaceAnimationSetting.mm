#include "platform/AnimationSetting.h"
#include "platform/Platform.h"

#import <AppKit/AppKit.h>

namespace varno {
namespace {

/// The user's “Reduce motion”.
class WorkspaceAnimationSetting final : public AnimationSetting {
public:
    WorkspaceAnimationSetting()
        : m_observer([NSWorkspace.sharedWorkspace.notificationCenter
              addObserverForName:NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
                          object:nil
                           queue:NSOperationQueue.mainQueue
                      usingBlock:^(NSNotification*) {
                        takeNote();
                      }])
        , m_isEnabled(read())
    {
    }
    ~WorkspaceAnimationSetting() override
    {
        [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:m_observer];
    }
    Q_DISABLE_COPY_MOVE(WorkspaceAnimationSetting)

    [[nodiscard]] bool isEnabled() override { return m_isEnabled; }

private:
    static bool read()
    {
        return !NSWorkspace.sharedWorkspace.accessibilityDisplayShouldReduceMotion;
    }

    /// Of other settings of the display, too.
    void takeNote()
    {
        if (std::exchange(m_isEnabled, read()) != m_isEnabled)
            Q_EMIT changed(m_isEnabled);
    }

    id<NSObject> m_observer;
    bool m_isEnabled;
};

} // namespace

AnimationSetting& systemAnimationSetting()
{
    static WorkspaceAnimationSetting setting;
    return setting;
}

} // namespace varno
