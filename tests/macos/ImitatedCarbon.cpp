#include "tests/macos/Imitation.h"

#include <algorithm>
#include <cstring>

struct OpaqueEventRef {
    UInt32 kind;
    varno::imitation::EventManager::Parameters parameters;
};

const CFStringRef kTISPropertyUnicodeKeyLayoutData = CFSTR("layout data");
const CFStringRef kTISNotifySelectedKeyboardInputSourceChanged = CFSTR("layout changed");

namespace {

using varno::imitation::eventManager;

// Behind these references nobody looks.
EventTargetRef dispatcher()
{
    static char mark = 0;
    return reinterpret_cast<EventTargetRef>(&mark);
}

EventHandlerRef handlerReference()
{
    static char mark = 0;
    return reinterpret_cast<EventHandlerRef>(&mark);
}

constexpr OSStatus wrongCall = -50;

void log(const char* call, ItemCount count, const EventTypeSpec* types)
{
    QStringList kinds;
    for (const EventTypeSpec* type = types; type != types + count; ++type)
        kinds << (type->eventClass == kEventClassKeyboard ? QString::number(type->eventKind)
                                                          : QStringLiteral("?"));
    eventManager().calls << QString::fromLatin1(call) + u' ' + kinds.join(u' ');
}

} // namespace

EventTargetRef GetEventDispatcherTarget()
{
    return dispatcher();
}

OSStatus InstallEventHandler(EventTargetRef target, EventHandlerUPP handler, ItemCount count,
                             const EventTypeSpec* types, void* user, EventHandlerRef* made)
{
    log("InstallEventHandler", count, types);
    if (target != dispatcher() || eventManager().handler)
        return wrongCall;
    eventManager().handler = handler;
    eventManager().user = user;
    *made = handlerReference();
    return noErr;
}

OSStatus RemoveEventHandler(EventHandlerRef)
{
    log("RemoveEventHandler", 0, nullptr);
    eventManager().handler = nullptr;
    eventManager().kinds.clear();
    return noErr;
}

OSStatus AddEventTypesToHandler(EventHandlerRef handler, ItemCount count,
                                const EventTypeSpec* types)
{
    log("AddEventTypesToHandler", count, types);
    for (const EventTypeSpec* type = types; type != types + count; ++type)
        eventManager().kinds.insert(type->eventKind);
    return handler == handlerReference() ? OSStatus(noErr) : wrongCall;
}

OSStatus RemoveEventTypesFromHandler(EventHandlerRef handler, ItemCount count,
                                     const EventTypeSpec* types)
{
    log("RemoveEventTypesFromHandler", count, types);
    for (const EventTypeSpec* type = types; type != types + count; ++type)
        eventManager().kinds.erase(type->eventKind);
    return handler == handlerReference() ? OSStatus(noErr) : wrongCall;
}

UInt32 GetEventKind(EventRef event)
{
    return event->kind;
}

OSStatus GetEventParameter(EventRef event, EventParamName name, EventParamType wanted,
                           EventParamType*, ByteCount room, ByteCount*, void* data)
{
    const auto found = event->parameters.find(name);
    const bool isIdentity = name == kEventParamDirectObject;
    if (found == event->parameters.end() || wanted != (isIdentity ? typeEventHotKeyID : typeUInt32))
        return eventParameterNotFoundErr;
    std::memcpy(data, found->second.data(),
                std::min(room, ByteCount(found->second.size() * sizeof(UInt32))));
    return noErr;
}

OSStatus RegisterEventHotKey(UInt32 keyCode, UInt32 modifiers, EventHotKeyID identity,
                             EventTargetRef target, OptionBits options, EventHotKeyRef* made)
{
    eventManager().calls << QStringLiteral("RegisterEventHotKey %1 %2 %3 %4 %5")
                                .arg(keyCode)
                                .arg(modifiers)
                                .arg(identity.signature, 0, 16)
                                .arg(identity.id)
                                .arg(options);
    if (target != dispatcher())
        return wrongCall;
    if (eventManager().taken.contains({keyCode, modifiers}))
        return eventHotKeyExistsErr;
    *made = reinterpret_cast<EventHotKeyRef>(new char); // gone when it is unregistered
    eventManager().hotKeys[*made] = {{keyCode, modifiers}, identity};
    return noErr;
}

OSStatus UnregisterEventHotKey(EventHotKeyRef hotKey)
{
    eventManager().calls << QStringLiteral("UnregisterEventHotKey");
    if (eventManager().hotKeys.erase(hotKey) == 0)
        return wrongCall;
    delete reinterpret_cast<char*>(hotKey);
    return noErr;
}

OSStatus CopySymbolicHotKeys(CFArrayRef* hotKeys)
{
    const CFTypeRef list = eventManager().symbolicHotKeys;
    *hotKeys = static_cast<CFArrayRef>(list ? CFRetain(list) : nullptr);
    return list ? OSStatus(noErr) : wrongCall;
}

TISInputSourceRef TISCopyCurrentKeyboardLayoutInputSource()
{
    const auto* const empty = reinterpret_cast<const UInt8*>("layout");
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): sources are values, too
    return const_cast<TISInputSourceRef>(
        reinterpret_cast<const TISInputSource*>(CFDataCreate(nullptr, empty, 6)));
}

void* TISGetInputSourceProperty(TISInputSourceRef source, CFStringRef name)
{
    const bool isThere =
        name == kTISPropertyUnicodeKeyLayoutData && varno::imitation::layout().isUnicode;
    return isThere ? source : nullptr;
}

UInt8 LMGetKbdType()
{
    return 40;
}

OSStatus UCKeyTranslate(const UCKeyboardLayout*, UInt16 keyCode, UInt16 action, UInt32 modifiers,
                        UInt32 keyboardType, OptionBits options, UInt32*, UniCharCount room,
                        UniCharCount* count, UniChar* characters)
{
    const QString typed = varno::imitation::layout().characters.value(keyCode);
    if (action != kUCKeyActionDisplay || modifiers != 0 || keyboardType != 40 ||
        options != kUCKeyTranslateNoDeadKeysMask || room < UniCharCount(typed.size()))
        return wrongCall;
    *count = UniCharCount(typed.size());
    std::memcpy(characters, typed.utf16(), *count * sizeof *characters);
    return noErr;
}

namespace varno::imitation {

EventManager& eventManager()
{
    static EventManager manager;
    return manager;
}

Layout& layout()
{
    static Layout current;
    return current;
}

OSStatus EventManager::send(UInt32 kind, const Parameters& parameters) const
{
    OpaqueEventRef event{kind, parameters};
    return handler && kinds.contains(kind) ? handler(nullptr, &event, user) : -9874;
}

void EventManager::type(UInt32 keyCode, UInt32 modifiers) const
{
    for (const UInt32 kind : {5U, 6U})
        for (const auto& [reference, hotKey] : std::map(hotKeys))
            if (hotKey.first == std::pair(keyCode, modifiers))
                static_cast<void>(send(kind, {{kEventParamDirectObject,
                                               {hotKey.second.signature, hotKey.second.id}}}));
}

} // namespace varno::imitation
