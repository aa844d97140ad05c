#include "platform/ProgramKeys.h"
#include "platform/macos/CoreFoundationValues.h"

#import <AppKit/AppKit.h>

namespace varno {
namespace {

QString textOf(NSString* text)
{
    return stringOf((__bridge CFTypeRef)text).value_or(QString());
}

void addKeys(NSMenu* menu, QList<MenuKey>& keys)
{
    for (NSMenuItem* item in menu.itemArray) {
        if (const QString equivalent = textOf(item.keyEquivalent); equivalent.size() == 1)
            keys.append({.title = textOf(item.title),
                         .character = equivalent.front(),
                         .modifiers = static_cast<quint32>(item.keyEquivalentModifierMask)});
        if (item.submenu)
            addKeys(item.submenu, keys);
    }
}

} // namespace

bool controlStandsForCommand()
{
    return false;
}

QList<MenuKey> menuKeys()
{
    QList<MenuKey> keys;
    addKeys(NSApp.mainMenu, keys);
    return keys;
}

void suspendMenuKeys(bool suspended)
{
    static id monitor = nil;
    if (suspended == (monitor != nil))
        return;
    if (suspended) {
        monitor = [NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                                        handler:^NSEvent*(NSEvent* event) {
                                                          [event.window.firstResponder
                                                              keyDown:event];
                                                          return nil;
                                                        }];
    } else {
        [NSEvent removeMonitor:monitor];
        monitor = nil;
    }
}

} // namespace varno
