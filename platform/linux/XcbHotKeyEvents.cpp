#include "platform/linux/XcbHotKeyEvents.h"

#include "platform/linux/XcbConnection.h"
#include "platform/linux/XcbKeyCodes.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace varno {
namespace {

std::vector<xcb_window_t> rootWindows(const XcbConnection& connection)
{
    std::vector<xcb_window_t> roots;
    for (auto screens = xcb_setup_roots_iterator(connection.setup()); screens.rem > 0;
         xcb_screen_next(&screens))
        roots.push_back(screens.data->root);
    return roots;
}

} // namespace

XcbHotKeyEvents::XcbHotKeyEvents(XcbConnection& connection)
    : m_connection(connection)
    , m_modifiers(XcbModifierMap::read(connection))
{
    connect(&connection, &XcbConnection::keyPressed, this, &XcbHotKeyEvents::press);
    connect(&connection, &XcbConnection::keyReleased, this, &XcbHotKeyEvents::liftKey);
    connect(&connection, &XcbConnection::keymapChanged, this, &XcbHotKeyEvents::grabAgain);
}

XcbHotKeyEvents::~XcbHotKeyEvents()
{
    releaseAll();
}

std::optional<HotKeyEvents::Reference>
XcbHotKeyEvents::registerHotKey(int carbonKeyCode, int carbonModifiers, HotKeyIdentity identity)
{
    const std::optional<Combination> wanted = combination(carbonKeyCode, carbonModifiers);
    if (!wanted || find(*wanted) || !grab(*wanted))
        return std::nullopt;
    const bool isGrabbed = m_types.testFlag(hotKeyEvents);
    if (!isGrabbed)
        release(*wanted); // it was there to be had
    m_hotKeys.emplace(++m_lastReference,
                      HotKey{.combination = *wanted, .identity = identity, .isGrabbed = isGrabbed});
    return m_lastReference;
}

void XcbHotKeyEvents::unregisterHotKey(Reference reference)
{
    const auto found = m_hotKeys.find(reference);
    if (found == m_hotKeys.end())
        return;
    if (found->second.isGrabbed)
        release(found->second.combination);
    m_hotKeys.erase(found);
    std::erase_if(m_pressed, [=](const auto& entry) { return entry.second == reference; });
}

void XcbHotKeyEvents::installHandler(Handler handler)
{
    m_handler = std::move(handler);
}

void XcbHotKeyEvents::addEventTypes(EventTypes types)
{
    m_types |= types;
    if (m_types.testFlag(hotKeyEvents))
        grabAll();
}

void XcbHotKeyEvents::removeEventTypes(EventTypes types)
{
    m_types &= ~types;
    if (!m_types.testFlag(hotKeyEvents))
        releaseAll();
}

bool XcbHotKeyEvents::isReserved(int carbonKeyCode, int carbonModifiers)
{
    const std::optional<Combination> asked = combination(carbonKeyCode, carbonModifiers);
    if (!asked)
        return false;
    if (const HotKey* const ours = find(*asked); ours && ours->isGrabbed)
        return false; // and asking would give it away
    if (!grab(*asked))
        return m_connection.isOpen();
    release(*asked);
    return false;
}

std::optional<XcbHotKeyEvents::Combination> XcbHotKeyEvents::combination(int carbonKeyCode,
                                                                         int carbonModifiers) const
{
    const std::optional<quint8> keyCode = xKeyCode(carbonKeyCode);
    // Key code 0 would grab every key there is.
    if (!m_connection.isOpen() || !keyCode || *keyCode < m_connection.setup()->min_keycode)
        return std::nullopt;
    return Combination{.keyCode = *keyCode, .carbonModifiers = carbonModifiers};
}

const XcbHotKeyEvents::HotKey* XcbHotKeyEvents::find(const Combination& combination) const
{
    const auto found = std::find_if(m_hotKeys.begin(), m_hotKeys.end(), [&](const auto& entry) {
        return entry.second.combination == combination;
    });
    return found == m_hotKeys.end() ? nullptr : &found->second;
}

bool XcbHotKeyEvents::grab(const Combination& combination)
{
    const std::optional<quint16> mask = m_modifiers.mask(combination.carbonModifiers);
    if (!mask || !m_connection.isOpen())
        return false;
    std::vector<xcb_void_cookie_t> requests;
    for (const xcb_window_t root : rootWindows(m_connection))
        for (const quint16 locks : m_modifiers.lockVariants())
            requests.push_back(xcb_grab_key_checked(
                m_connection.get(), 0, root, static_cast<quint16>(*mask | locks),
                combination.keyCode, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    bool granted = true;
    for (const xcb_void_cookie_t request : requests)
        granted = m_connection.check(request) && granted;
    if (!granted)
        release(combination);
    return granted;
}

void XcbHotKeyEvents::release(const Combination& combination)
{
    const std::optional<quint16> mask = m_modifiers.mask(combination.carbonModifiers);
    if (!mask || !m_connection.isOpen())
        return;
    for (const xcb_window_t root : rootWindows(m_connection))
        for (const quint16 locks : m_modifiers.lockVariants())
            xcb_ungrab_key(m_connection.get(), combination.keyCode, root,
                           static_cast<quint16>(*mask | locks));
    xcb_flush(m_connection.get());
}

void XcbHotKeyEvents::grabAll()
{
    for (auto& [reference, hotKey] : m_hotKeys)
        if (!hotKey.isGrabbed)
            hotKey.isGrabbed = grab(hotKey.combination);
}

void XcbHotKeyEvents::releaseAll()
{
    for (auto& [reference, hotKey] : m_hotKeys)
        if (std::exchange(hotKey.isGrabbed, false))
            release(hotKey.combination);
}

void XcbHotKeyEvents::grabAgain()
{
    const XcbModifierMap modifiers = XcbModifierMap::read(m_connection);
    if (modifiers != m_modifiers)
        releaseAll(); // by the modifiers that they were grabbed with
    m_modifiers = modifiers;
    // Those that are still grabbed are grabbed once more, so that no key slips through between.
    for (auto& [reference, hotKey] : m_hotKeys)
        hotKey.isGrabbed = m_types.testFlag(hotKeyEvents) && grab(hotKey.combination);
}

void XcbHotKeyEvents::press(quint8 keyCode, quint16 state, quint32 time)
{
    if (m_pressed.contains(keyCode))
        return; // repeated
    const quint16 held = m_modifiers.held(state);
    const auto found = std::find_if(m_hotKeys.begin(), m_hotKeys.end(), [&](const auto& entry) {
        const Combination& combination = entry.second.combination;
        return entry.second.isGrabbed && combination.keyCode == keyCode &&
               m_modifiers.mask(combination.carbonModifiers) == held;
    });
    if (found == m_hotKeys.end())
        return;
    m_pressed.emplace(keyCode, found->first);
    send(found->second, hotKeyPressed, time);
}

void XcbHotKeyEvents::liftKey(quint8 keyCode, quint32 time)
{
    // Whatever became of the modifiers: people lift them in any order.
    const auto pressed = m_pressed.extract(keyCode);
    if (!pressed)
        return;
    if (const auto found = m_hotKeys.find(pressed.mapped()); found != m_hotKeys.end())
        send(found->second, hotKeyReleased, time);
}

void XcbHotKeyEvents::send(const HotKey& hotKey, quint32 kind, quint32 time) const
{
    if (!m_handler || !m_types.testFlag(hotKeyEvents))
        return;
    const Handler handler = m_handler; // a copy: it may destroy this
    handler({.kind = kind, .identity = hotKey.identity, .time = time});
}

} // namespace varno
