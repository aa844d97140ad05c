#include "platform/UserAction.h"
#include "platform/WindowPlacement.h"

#include <QWindow>

#import <AppKit/AppKit.h>
#import <objc/runtime.h>

#include <array>
#include <string>

namespace varno {
namespace {

constexpr NSWindowStyleMask panelStyle =
    NSWindowStyleMaskTitled | NSWindowStyleMaskClosable | NSWindowStyleMaskResizable |
    NSWindowStyleMaskNonactivatingPanel | NSWindowStyleMaskFullSizeContentView;
static_assert(panelStyle == 32907);

constexpr NSWindowCollectionBehavior panelBehavior =
    NSWindowCollectionBehaviorCanJoinAllSpaces | NSWindowCollectionBehaviorFullScreenAuxiliary;
static_assert(panelBehavior == 257);

/// The toolkit's own, which is a panel for a window of the kind “tool”.
NSPanel* panelOf(const QWindow& window)
{
    NSView* const view = (__bridge NSView*)reinterpret_cast<void*>(window.winId());
    return static_cast<NSPanel*>(view.window);
}

/// The toolkit's panels, but that they always take the keyboard.
Class panelClass(Class toolkitClass)
{
    static const Class made = [&] {
        const Class panels = objc_allocateClassPair(toolkitClass, "Varno.VarnoPanel", 0);
        const std::string type = std::string(@encode(BOOL)) + "@:";
        const auto always = +[](id, SEL) -> BOOL { return YES; };
        for (const SEL question : { @selector(canBecomeKeyWindow), @selector(canBecomeMainWindow) })
            class_addMethod(panels, question, reinterpret_cast<IMP>(always), type.c_str());
        objc_registerClassPair(panels);
        return panels;
    }();
    return made;
}

} // namespace

DisplayChoice::DisplayChoice() = default;
DisplayChoice::~DisplayChoice() = default;

/// The system counts upwards from the lower left corner of the first screen.
QRect roomBeforeUser()
{
    NSScreen* const screen = NSScreen.mainScreen;
    if (!screen)
        return {};
    const NSRect room = screen.visibleFrame;
    const CGFloat top = NSScreen.screens.firstObject.frame.size.height;
    return QRectF(room.origin.x, top - room.origin.y - room.size.height, room.size.width,
                  room.size.height)
        .toRect();
}

bool hasSystemFrame()
{
    return true;
}

void prepareFloatingPanel(QWindow& window)
{
    NSPanel* const panel = panelOf(window);
    if (object_getClass(panel) == panel.class) // and not one of a watcher's in between
        object_setClass(panel, panelClass(panel.class));
    panel.styleMask = panelStyle;
    panel.floatingPanel = YES;
    panel.opaque = NO;
    panel.hasShadow = YES;
    panel.backgroundColor = NSColor.clearColor;
    panel.titlebarAppearsTransparent = YES;
    panel.titleVisibility = NSWindowTitleHidden;
    panel.hidesOnDeactivate = NO;
    panel.releasedWhenClosed = NO;
    panel.collectionBehavior = panelBehavior;
    panel.minSize = NSMakeSize(window.minimumWidth(), window.minimumHeight());
}

void activateForUser(QWindow& window, const UserAction& /*action*/)
{
    [panelOf(window) makeKeyAndOrderFront:nil];
    [NSApp activateIgnoringOtherApps:YES];
}

void acknowledge(const UserAction& /*action*/) {}

void startMove(QWindow& window)
{
    window.startSystemMove();
}

/// The system's own edges do that.
void startResize(QWindow& /*window*/, Qt::Edges /*edges*/) {}

bool isPointerPressed()
{
    return (NSEvent.pressedMouseButtons & 1) != 0;
}

} // namespace varno
