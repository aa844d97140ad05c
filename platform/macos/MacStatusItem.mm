#include "platform/Platform.h"
#include "platform/StatusItem.h"
#include "platform/macos/ActionTarget.h"
#include "platform/macos/CoreFoundationValues.h"

#include <utility>

namespace varno {
namespace {

/// A square in the status bar, without a menu. The image is the system's own of the closed book,
/// which takes the colours of the bar.
class MacStatusItem final : public StatusItem {
public:
    explicit MacStatusItem(const QString& name)
        : m_item([NSStatusBar.systemStatusBar statusItemWithLength:NSSquareStatusItemLength])
        , m_target([[VarnoActionTarget alloc] initWithAction:[this] { Q_EMIT activated({}); }])
    {
        const auto description = cfString(name);
        NSImage* const image =
            [NSImage imageWithSystemSymbolName:@"book.closed.fill"
                      accessibilityDescription:(__bridge NSString*)description.get()];
        [image setTemplate:YES];
        NSStatusBarButton* const button = m_item.button;
        button.image = image;
        button.target = m_target;
        button.action = @selector(toggleWindow:);
    }
    ~MacStatusItem() override { [NSStatusBar.systemStatusBar removeStatusItem:m_item]; }
    Q_DISABLE_COPY_MOVE(MacStatusItem)

private:
    NSStatusItem* m_item;
    VarnoActionTarget* m_target;
};

} // namespace

void becomeAccessory()
{
    [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory];
}

void askForStatusArea(QObject& context, std::function<void(bool)> answer)
{
    QMetaObject::invokeMethod(
        &context, [answer = std::move(answer)] { answer(true); }, Qt::QueuedConnection);
}

std::unique_ptr<StatusItem> makeSystemStatusItem(const QIcon& /*icon*/, const QString& name)
{
    return std::make_unique<MacStatusItem>(name);
}

} // namespace varno
