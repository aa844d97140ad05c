#include "platform/macos/ActionTarget.h"

#include <utility>

@implementation VarnoActionTarget {
    std::function<void()> _action;
}

- (instancetype)initWithAction:(std::function<void()>)action
{
    self = [super init];
    _action = std::move(action);
    return self;
}

- (void)toggleWindow:(id)__unused sender
{
    _action();
}

- (void)reopen:(NSAppleEventDescriptor*)__unused event reply:(NSAppleEventDescriptor*)__unused reply
{
    _action();
}

@end
