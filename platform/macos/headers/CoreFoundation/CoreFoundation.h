#pragma once

#if __has_include(<MacTypes.h>)
#include <MacTypes.h>
#else
using Boolean = unsigned char;
using UInt8 = unsigned char;
using UInt16 = unsigned short;
using UInt32 = unsigned int;
using SInt32 = int;
using OSStatus = SInt32;
using FourCharCode = UInt32;
using OSType = FourCharCode;
using UniChar = UInt16;
using UniCharCount = unsigned long;
using ItemCount = unsigned long;
using ByteCount = unsigned long;
using OptionBits = UInt32;
enum { noErr = 0 };
#endif

extern "C" {

using CFIndex = long;
using CFTypeID = unsigned long;
using CFTypeRef = const void*;
using CFPropertyListRef = CFTypeRef;
using CFAllocatorRef = const struct __CFAllocator*;
using CFStringRef = const struct __CFString*;
using CFDataRef = const struct __CFData*;
using CFNumberRef = const struct __CFNumber*;
using CFBooleanRef = const struct __CFBoolean*;
using CFArrayRef = const struct __CFArray*;
using CFDictionaryRef = const struct __CFDictionary*;
using CFNotificationCenterRef = struct __CFNotificationCenter*;
struct CFRange {
    CFIndex location;
    CFIndex length;
};

CFTypeRef CFRetain(CFTypeRef value);
void CFRelease(CFTypeRef value);
CFTypeID CFGetTypeID(CFTypeRef value);

CFTypeID CFStringGetTypeID();
CFStringRef __CFStringMakeConstantString(const char* text);
CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar* characters, CFIndex count);
CFIndex CFStringGetLength(CFStringRef);
void CFStringGetCharacters(CFStringRef, CFRange, UniChar* characters);

CFTypeID CFDataGetTypeID();
CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length);
CFIndex CFDataGetLength(CFDataRef);
const UInt8* CFDataGetBytePtr(CFDataRef);

enum CFNumberType : CFIndex { kCFNumberSInt32Type = 3 };
CFTypeID CFNumberGetTypeID();
Boolean CFNumberGetValue(CFNumberRef, CFNumberType, void* value);

extern const CFBooleanRef kCFBooleanTrue;
extern const CFBooleanRef kCFBooleanFalse;
CFTypeID CFBooleanGetTypeID();
Boolean CFBooleanGetValue(CFBooleanRef);

struct CFArrayCallBacks;
extern const CFArrayCallBacks kCFTypeArrayCallBacks;
CFTypeID CFArrayGetTypeID();
CFArrayRef CFArrayCreate(CFAllocatorRef, const void** values, CFIndex count,
                         const CFArrayCallBacks*);
CFIndex CFArrayGetCount(CFArrayRef);
const void* CFArrayGetValueAtIndex(CFArrayRef, CFIndex index);

struct CFDictionaryKeyCallBacks;
struct CFDictionaryValueCallBacks;
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;
CFTypeID CFDictionaryGetTypeID();
CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values,
                                   CFIndex count, const CFDictionaryKeyCallBacks*,
                                   const CFDictionaryValueCallBacks*);
CFIndex CFDictionaryGetCount(CFDictionaryRef);
const void* CFDictionaryGetValue(CFDictionaryRef, const void* key);
void CFDictionaryGetKeysAndValues(CFDictionaryRef, const void** keys, const void** values);

extern const CFStringRef kCFPreferencesCurrentUser;
extern const CFStringRef kCFPreferencesAnyHost;
CFDictionaryRef CFPreferencesCopyMultiple(CFArrayRef keys, CFStringRef application,
                                          CFStringRef user, CFStringRef host);
CFPropertyListRef CFPreferencesCopyValue(CFStringRef key, CFStringRef application, CFStringRef user,
                                         CFStringRef host);
void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef application);
Boolean CFPreferencesAppSynchronize(CFStringRef application);

using CFNotificationCallback = void (*)(CFNotificationCenterRef, void* observer, CFStringRef name,
                                        const void* object, CFDictionaryRef userInfo);
enum CFNotificationSuspensionBehavior : CFIndex {
    CFNotificationSuspensionBehaviorDeliverImmediately = 4
};
CFNotificationCenterRef CFNotificationCenterGetDistributedCenter();
void CFNotificationCenterAddObserver(CFNotificationCenterRef, const void* observer,
                                     CFNotificationCallback, CFStringRef name, const void* object,
                                     CFNotificationSuspensionBehavior);
void CFNotificationCenterRemoveObserver(CFNotificationCenterRef, const void* observer,
                                        CFStringRef name, const void* object);
}

#define CFSTR(text) __CFStringMakeConstantString(text)
