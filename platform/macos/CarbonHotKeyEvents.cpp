#include "platform/macos/CarbonHotKeyEvents.h"

#include "platform/CarbonModifiers.h"
#include "platform/macos/CoreFoundationValues.h"

#include <utility>
#include <vector>

namespace varno {
namespace {

/// The bits of a combination: others tell of locks, and of the side that a modifier is on.
constexpr int combinable = carbonModifier::command | carbonModifier::shift |
                           carbonModifier::option | carbonModifier::control |
                           carbonModifier::function;

std::vector<EventTypeSpec> eventTypesOf(HotKeyEvents::EventTypes types)
{
    std::vector<EventTypeSpec> eventTypes;
    for (const auto& [type, kind] : {std::pair(HotKeyEvents::hotKeyEvents, hotKeyPressed),
                                     std::pair(HotKeyEvents::hotKeyEvents, hotKeyReleased),
                                     std::pair(HotKeyEvents::keyboardEvents, rawKeyDown),
                                     std::pair(HotKeyEvents::keyboardEvents, rawKeyUp)})
        if (types.testFlag(type))
            eventTypes.push_back({kEventClassKeyboard, kind});
    return eventTypes;
}

template <typename Value>
OSStatus read(EventRef event, EventParamName name, EventParamType type, Value& value)
{
    return GetEventParameter(event, name, type, nullptr, sizeof value, nullptr, &value);
}

HotKeyEvent keyboardEvent(EventRef event, UInt32 kind)
{
    UInt32 keyCode = 0;
    UInt32 modifiers = 0;
    OSStatus status = read(event, kEventParamKeyCode, typeUInt32, keyCode);
    if (status == noErr)
        status = read(event, kEventParamKeyModifiers, typeUInt32, modifiers);
    return {.eventClass = HotKeyEventClass::keyboard,
            .kind = kind,
            .parameterStatus = status,
            .carbonKeyCode = static_cast<int>(keyCode),
            .carbonModifiers = static_cast<int>(modifiers) & combinable};
}

HotKeyEvent hotKeyEvent(EventRef event, UInt32 kind)
{
    EventHotKeyID identity = {};
    const OSStatus status = read(event, kEventParamDirectObject, typeEventHotKeyID, identity);
    return {.kind = kind,
            .parameterStatus = status,
            .identity = {.signature = identity.signature, .id = identity.id}};
}

bool isThatHotKey(CFTypeRef entry, int carbonKeyCode, int carbonModifiers)
{
    if (!entry || CFGetTypeID(entry) != CFDictionaryGetTypeID())
        return false;
    const auto value = [entry](CFStringRef key) {
        return CFDictionaryGetValue(static_cast<CFDictionaryRef>(entry), key);
    };
    return booleanOf(value(kHISymbolicHotKeyEnabled)) == true &&
           integerOf(value(kHISymbolicHotKeyCode)) == carbonKeyCode &&
           integerOf(value(kHISymbolicHotKeyModifiers)) == carbonModifiers;
}

} // namespace

CarbonHotKeyEvents::~CarbonHotKeyEvents()
{
    for (const auto& [reference, hotKey] : m_hotKeys)
        UnregisterEventHotKey(hotKey);
    if (m_installed)
        RemoveEventHandler(m_installed);
}

std::optional<HotKeyEvents::Reference>
CarbonHotKeyEvents::registerHotKey(int carbonKeyCode, int carbonModifiers, HotKeyIdentity identity)
{
    EventHotKeyRef hotKey = nullptr;
    const OSStatus status =
        RegisterEventHotKey(static_cast<UInt32>(carbonKeyCode),
                            static_cast<UInt32>(carbonModifiers), {identity.signature, identity.id},
                            GetEventDispatcherTarget(), kEventHotKeyNoOptions, &hotKey);
    if (status != noErr || !hotKey)
        return std::nullopt;
    m_hotKeys.emplace(++m_lastReference, hotKey);
    return m_lastReference;
}

void CarbonHotKeyEvents::unregisterHotKey(Reference reference)
{
    const auto found = m_hotKeys.find(reference);
    if (found == m_hotKeys.end())
        return;
    UnregisterEventHotKey(found->second);
    m_hotKeys.erase(found);
}

void CarbonHotKeyEvents::installHandler(Handler handler)
{
    m_handler = std::move(handler);
    if (!m_handler || m_installed)
        return;
    if (InstallEventHandler(GetEventDispatcherTarget(), &onEvent, 0, nullptr, this, &m_installed) ==
        noErr)
        addEventTypes(std::exchange(m_types, {}));
}

void CarbonHotKeyEvents::addEventTypes(EventTypes types)
{
    const std::vector<EventTypeSpec> added = eventTypesOf(types & ~m_types);
    m_types |= types;
    if (m_installed && !added.empty())
        AddEventTypesToHandler(m_installed, added.size(), added.data());
}

void CarbonHotKeyEvents::removeEventTypes(EventTypes types)
{
    const std::vector<EventTypeSpec> removed = eventTypesOf(types & m_types);
    m_types &= ~types;
    if (m_installed && !removed.empty())
        RemoveEventTypesFromHandler(m_installed, removed.size(), removed.data());
}

bool CarbonHotKeyEvents::isReserved(int carbonKeyCode, int carbonModifiers)
{
    CFArrayRef list = nullptr;
    if (CopySymbolicHotKeys(&list) != noErr || !list)
        return false;
    const CFOwned<CFArrayRef> hotKeys(list);
    for (CFIndex i = 0; i < CFArrayGetCount(list); ++i)
        if (isThatHotKey(CFArrayGetValueAtIndex(list, i), carbonKeyCode, carbonModifiers))
            return true;
    return false;
}

OSStatus CarbonHotKeyEvents::onEvent(EventHandlerCallRef, EventRef event, void* user)
{
    const Handler handler = static_cast<CarbonHotKeyEvents*>(user)->m_handler; // may destroy it
    if (!handler)
        return eventNotHandledErr;
    const UInt32 kind = GetEventKind(event);
    const bool isRaw = kind == rawKeyDown || kind == rawKeyUp;
    return handler(isRaw ? keyboardEvent(event, kind) : hotKeyEvent(event, kind));
}

} // namespace varno
