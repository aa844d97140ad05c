#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <objc/NSObject.h>
#include <objc/objc.h>

@class NSArray<ObjectType>, NSColor, NSEvent, NSImage, NSMenu, NSNotification, NSString, NSWindow;

using CGFloat = double;
struct CGPoint {
    CGFloat x;
    CGFloat y;
};
struct CGSize {
    CGFloat width;
    CGFloat height;
};
struct CGRect {
    CGPoint origin;
    CGSize size;
};
using NSSize = CGSize;
using NSRect = CGRect;
inline NSSize NSMakeSize(CGFloat width, CGFloat height)
{
    return {width, height};
}

@interface NSString : NSObject
@end

struct NSFastEnumerationState {
    unsigned long state;
    __unsafe_unretained id* itemsPtr;
    unsigned long* mutationsPtr;
    unsigned long extra[5];
};
@interface NSArray<__covariant ObjectType> : NSObject
@property(readonly) ObjectType firstObject;
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(__unsafe_unretained id[])buffer
                                    count:(NSUInteger)length;
@end

@interface NSOperationQueue : NSObject
@property(class, readonly) NSOperationQueue* mainQueue;
@end

@interface NSNotificationCenter : NSObject
- (id<NSObject>)addObserverForName:(NSString*)name
                            object:(id)object
                             queue:(NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification*))block;
- (void)removeObserver:(id)observer;
@end

@interface NSAppleEventDescriptor : NSObject
@end
@interface NSAppleEventManager : NSObject
@property(class, readonly) NSAppleEventManager* sharedAppleEventManager;
- (void)setEventHandler:(id)handler
            andSelector:(SEL)selector
          forEventClass:(FourCharCode)eventClass
             andEventID:(FourCharCode)eventID;
@end

extern "C" NSString* const NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification;
@interface NSWorkspace : NSObject
@property(class, readonly) NSWorkspace* sharedWorkspace;
@property(readonly) NSNotificationCenter* notificationCenter;
@property(readonly) BOOL accessibilityDisplayShouldReduceMotion;
@end

@interface NSResponder : NSObject
- (void)keyDown:(NSEvent*)event;
@end

enum NSApplicationActivationPolicy : NSInteger { NSApplicationActivationPolicyAccessory = 1 };
@interface NSApplication : NSResponder
@property NSMenu* mainMenu;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)activateIgnoringOtherApps:(BOOL)flag;
@end
extern "C" NSApplication* NSApp;

enum NSEventMask : unsigned long long { NSEventMaskKeyDown = 1ULL << 10 };
@interface NSEvent : NSObject
@property(class, readonly) NSUInteger pressedMouseButtons;
@property(readonly) NSWindow* window;
+ (id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(NSEvent* (^)(NSEvent*))block;
+ (void)removeMonitor:(id)monitor;
@end

@interface NSMenuItem : NSObject
@property NSString* title;
@property NSString* keyEquivalent;
@property NSUInteger keyEquivalentModifierMask;
@property NSMenu* submenu;
@end
@interface NSMenu : NSObject
@property NSArray<NSMenuItem*>* itemArray;
@end

@interface NSColor : NSObject
@property(class, readonly) NSColor* clearColor;
@end

@interface NSImage : NSObject
+ (instancetype)imageWithSystemSymbolName:(NSString*)name
                 accessibilityDescription:(NSString*)description;
- (void)setTemplate:(BOOL)isTemplate;
@end

@interface NSView : NSResponder
@property(readonly) NSWindow* window;
@end
@interface NSStatusBarButton : NSView
@property NSImage* image;
@property(weak) id target;
@property SEL action;
@end
@interface NSStatusItem : NSObject
@property(readonly) NSStatusBarButton* button;
@end
constexpr CGFloat NSSquareStatusItemLength = -2;
@interface NSStatusBar : NSObject
@property(class, readonly) NSStatusBar* systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem*)item;
@end

@interface NSScreen : NSObject
@property(class, readonly) NSScreen* mainScreen;
@property(class, readonly) NSArray<NSScreen*>* screens;
@property(readonly) NSRect frame;
@property(readonly) NSRect visibleFrame;
@end

using NSWindowStyleMask = NSUInteger;
enum : NSWindowStyleMask {
    NSWindowStyleMaskTitled = 1,
    NSWindowStyleMaskClosable = 2,
    NSWindowStyleMaskResizable = 8,
    NSWindowStyleMaskNonactivatingPanel = 128,
    NSWindowStyleMaskFullSizeContentView = 32768,
};
using NSWindowCollectionBehavior = NSUInteger;
enum : NSWindowCollectionBehavior {
    NSWindowCollectionBehaviorCanJoinAllSpaces = 1,
    NSWindowCollectionBehaviorFullScreenAuxiliary = 256,
};
enum NSWindowTitleVisibility : NSInteger { NSWindowTitleHidden = 1 };
@interface NSWindow : NSResponder
@property NSWindowStyleMask styleMask;
@property(getter=isOpaque) BOOL opaque;
@property BOOL hasShadow;
@property NSColor* backgroundColor;
@property BOOL titlebarAppearsTransparent;
@property NSWindowTitleVisibility titleVisibility;
@property BOOL hidesOnDeactivate;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property NSWindowCollectionBehavior collectionBehavior;
@property NSSize minSize;
@property(readonly) NSResponder* firstResponder;
@property(readonly) BOOL canBecomeKeyWindow;
@property(readonly) BOOL canBecomeMainWindow;
- (void)makeKeyAndOrderFront:(id)sender;
@end
@interface NSPanel : NSWindow
@property(getter=isFloatingPanel) BOOL floatingPanel;
@end
