#pragma once

#include <CoreFoundation/CoreFoundation.h>

extern "C" {

using EventRef = struct OpaqueEventRef*;
using EventTargetRef = struct OpaqueEventTargetRef*;
using EventHandlerRef = struct OpaqueEventHandlerRef*;
using EventHandlerCallRef = struct OpaqueEventHandlerCallRef*;
using EventHotKeyRef = struct EventHotKey*;
using EventParamName = OSType;
using EventParamType = OSType;
using EventHandlerUPP = OSStatus (*)(EventHandlerCallRef, EventRef, void* user);

struct EventTypeSpec {
    OSType eventClass;
    UInt32 eventKind;
};
struct EventHotKeyID {
    OSType signature;
    UInt32 id;
};

enum { kEventHotKeyNoOptions = 0 };
enum { eventHotKeyExistsErr = -9878, eventParameterNotFoundErr = -9870 };
enum : OSType {
    kEventClassKeyboard = 0x6B657962,     // keyb
    kEventParamDirectObject = 0x2D2D2D2D, // ----
    kEventParamKeyCode = 0x6B636F64,      // kcod
    kEventParamKeyModifiers = 0x6B6D6F64, // kmod
    typeEventHotKeyID = 0x686B6964,       // hkid
    typeUInt32 = 0x6D61676E,              // magn
};

EventTargetRef GetEventDispatcherTarget();
OSStatus InstallEventHandler(EventTargetRef, EventHandlerUPP, ItemCount count,
                             const EventTypeSpec* types, void* user, EventHandlerRef* made);
OSStatus RemoveEventHandler(EventHandlerRef);
OSStatus AddEventTypesToHandler(EventHandlerRef, ItemCount count, const EventTypeSpec* types);
OSStatus RemoveEventTypesFromHandler(EventHandlerRef, ItemCount count, const EventTypeSpec* types);
UInt32 GetEventKind(EventRef);
OSStatus GetEventParameter(EventRef, EventParamName, EventParamType wanted, EventParamType* actual,
                           ByteCount room, ByteCount* size, void* data);
OSStatus RegisterEventHotKey(UInt32 keyCode, UInt32 modifiers, EventHotKeyID, EventTargetRef,
                             OptionBits, EventHotKeyRef* made);
OSStatus UnregisterEventHotKey(EventHotKeyRef);
OSStatus CopySymbolicHotKeys(CFArrayRef* hotKeys);

using TISInputSourceRef = struct TISInputSource*;
extern const CFStringRef kTISPropertyUnicodeKeyLayoutData;
extern const CFStringRef kTISNotifySelectedKeyboardInputSourceChanged;
TISInputSourceRef TISCopyCurrentKeyboardLayoutInputSource();
void* TISGetInputSourceProperty(TISInputSourceRef, CFStringRef name);

struct UCKeyboardLayout;
enum { kUCKeyActionDisplay = 3, kUCKeyTranslateNoDeadKeysMask = 1 };
UInt8 LMGetKbdType();
OSStatus UCKeyTranslate(const UCKeyboardLayout*, UInt16 keyCode, UInt16 action, UInt32 modifiers,
                        UInt32 keyboardType, OptionBits, UInt32* deadKeyState, UniCharCount room,
                        UniCharCount* count, UniChar* characters);
}

#define kHISymbolicHotKeyCode CFSTR("kHISymbolicHotKeyCode")
#define kHISymbolicHotKeyModifiers CFSTR("kHISymbolicHotKeyModifiers")
#define kHISymbolicHotKeyEnabled CFSTR("kHISymbolicHotKeyEnabled")
