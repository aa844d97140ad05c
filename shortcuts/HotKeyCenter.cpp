#include "shortcuts/HotKeyCenter.h"

#include <algorithm>
#include <utility>

namespace varno {
namespace {

/// Older ones tell of keys in no other way while a menu is open.
bool needsKeyboardEvents(const QOperatingSystemVersion& system)
{
    return system.type() == QOperatingSystemVersion::MacOS && system.majorVersion() < 14;
}

bool isPress(const HotKeyEvent& event)
{
    return event.kind ==
           (event.eventClass == HotKeyEventClass::hotKey ? hotKeyPressed : rawKeyDown);
}

bool isRelease(const HotKeyEvent& event)
{
    return event.kind == (event.eventClass == HotKeyEventClass::hotKey ? hotKeyReleased : rawKeyUp);
}

} // namespace

HotKeyCenter::HotKeyCenter(HotKeyEvents& events, const QOperatingSystemVersion& system)
    : m_events(events)
{
    m_types.setFlag(HotKeyEvents::keyboardEvents, needsKeyboardEvents(system));
}

HotKeyCenter::~HotKeyCenter()
{
    if (m_installed) {
        m_events.removeEventTypes(m_types);
        m_events.installHandler({});
        m_events.setBindingHandler({});
    }
    for (const auto& [id, hotKey] : m_hotKeys)
        m_events.unregisterHotKey(hotKey.reference);
}

bool HotKeyCenter::add(const Shortcut& shortcut, Callbacks callbacks)
{
    const quint32 id = ++m_lastId;
    const std::optional<HotKeyEvents::Reference> reference = m_events.registerHotKey(
        shortcut.carbonKeyCode(), shortcut.carbonModifiers(), {.signature = signature, .id = id});
    if (!reference)
        return false;
    m_hotKeys.emplace(
        id,
        HotKey{shortcut, *reference, std::move(callbacks), {.isCertain = !m_events.bindsLater()}});
    installHandler();
    return true;
}

void HotKeyCenter::installHandler()
{
    if (std::exchange(m_installed, true))
        return;
    m_events.installHandler([this](const HotKeyEvent& event) { return handle(event); });
    m_events.setBindingHandler(std::bind_front(&HotKeyCenter::take, this));
    if (!m_paused)
        m_events.addEventTypes(m_types);
}

void HotKeyCenter::take(HotKeyEvents::Reference reference, const HotKeyBinding& binding)
{
    const auto found =
        std::find_if(m_hotKeys.begin(), m_hotKeys.end(), [reference](const auto& entry) {
            return entry.second.reference == reference;
        });
    if (found == m_hotKeys.end() || found->second.binding == binding)
        return;
    found->second.binding = binding;
    if (m_bindingHandler)
        m_bindingHandler(Shortcut(found->second.shortcut)); // a copy: it may unregister it
}

void HotKeyCenter::remove(const Shortcut& shortcut)
{
    const auto found = find(shortcut);
    if (found == m_hotKeys.end())
        return;
    m_events.unregisterHotKey(found->second.reference);
    m_hotKeys.erase(found);
}

HotKeyBinding HotKeyCenter::binding(const Shortcut& shortcut) const
{
    const auto found = find(shortcut);
    return found == m_hotKeys.end() ? HotKeyBinding{.isBound = false} : found->second.binding;
}

void HotKeyCenter::setPaused(bool paused)
{
    if (std::exchange(m_paused, paused) == paused || !m_installed)
        return;
    if (paused)
        m_events.removeEventTypes(m_types);
    else
        m_events.addEventTypes(m_types);
}

int HotKeyCenter::handle(const HotKeyEvent& event)
{
    if (event.parameterStatus != 0)
        return event.parameterStatus;
    const auto found = target(event);
    if (found == m_hotKeys.end() || (!isPress(event) && !isRelease(event)))
        return eventNotHandledErr;
    m_lastEventTime = event.time;
    const Callbacks callbacks = found->second.callbacks; // a copy: they may unregister it
    if (const auto& callback = isPress(event) ? callbacks.keyDown : callbacks.keyUp)
        callback();
    return hotKeyEventHandled;
}

HotKeyCenter::HotKeys::const_iterator HotKeyCenter::target(const HotKeyEvent& event) const
{
    if (event.eventClass == HotKeyEventClass::keyboard)
        return find(Shortcut(event.carbonKeyCode, event.carbonModifiers));
    return event.identity.signature == signature ? m_hotKeys.find(event.identity.id)
                                                 : m_hotKeys.end();
}

HotKeyCenter::HotKeys::const_iterator HotKeyCenter::find(const Shortcut& shortcut) const
{
    return std::find_if(m_hotKeys.begin(), m_hotKeys.end(), [&shortcut](const auto& entry) {
        return entry.second.shortcut == shortcut;
    });
}

} // namespace varno
