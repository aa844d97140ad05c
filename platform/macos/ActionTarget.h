#pragma once

#import <AppKit/AppKit.h>

#include <functional>

/// Takes messages of the system, and calls a function for each. Who sends them does not keep it.
@interface VarnoActionTarget : NSObject
- (instancetype)initWithAction:(std::function<void()>)action;
- (void)toggleWindow:(id)sender;
- (void)reopen:(NSAppleEventDescriptor*)event reply:(NSAppleEventDescriptor*)reply;
@end
