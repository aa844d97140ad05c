#include "platform/linux/DesktopHotKeyEvents.h"

#include "platform/CarbonModifiers.h"
#include "platform/linux/DesktopService.h"
#include "platform/linux/XcbKeyCodes.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace varno {

DesktopHotKeyEvents::DesktopHotKeyEvents(DesktopService& service, Ask ask)
    : m_service(service)
    , m_ask(std::move(ask))
{
    m_nextTurn.setSingleShot(true);
    connect(&m_nextTurn, &QTimer::timeout, this, &DesktopHotKeyEvents::askForAll);
    connect(&service, &DesktopService::ready, this, [this] {
        forgetAll(); // another owner knows nothing of them
        askForAll();
    });
    connect(&service, &DesktopService::lost, this, &DesktopHotKeyEvents::forgetAll);
}

DesktopHotKeyEvents::~DesktopHotKeyEvents() = default;

std::optional<HotKeyEvents::Reference>
DesktopHotKeyEvents::registerHotKey(int carbonKeyCode, int carbonModifiers, HotKeyIdentity identity)
{
    const auto isSame = [=](const auto& entry) {
        const Wish& wish = entry.second.wish;
        return wish.carbonKeyCode == carbonKeyCode && wish.carbonModifiers == carbonModifiers;
    };
    if (!xKeyCode(carbonKeyCode) || (carbonModifiers & carbonModifier::function) != 0 ||
        std::any_of(m_hotKeys.begin(), m_hotKeys.end(), isSame))
        return std::nullopt;
    m_hotKeys.emplace(
        ++m_lastReference,
        HotKey{.wish = {carbonKeyCode, carbonModifiers, m_hasDropped}, .identity = identity});
    m_nextTurn.start(0);
    return m_lastReference;
}

void DesktopHotKeyEvents::unregisterHotKey(Reference reference)
{
    m_hasDropped |= m_hotKeys.erase(reference) > 0;
}

void DesktopHotKeyEvents::setBindingHandler(const BindingHandler& handler)
{
    m_bindingHandler = handler;
}

void DesktopHotKeyEvents::installHandler(Handler handler)
{
    m_handler = std::move(handler);
}

void DesktopHotKeyEvents::addEventTypes(EventTypes types)
{
    m_types |= types;
    setPaused(!m_types.testFlag(hotKeyEvents));
}

void DesktopHotKeyEvents::removeEventTypes(EventTypes types)
{
    m_types &= ~types;
    setPaused(!m_types.testFlag(hotKeyEvents));
}

bool DesktopHotKeyEvents::isReserved(int /*carbonKeyCode*/, int /*carbonModifiers*/)
{
    return false;
}

void DesktopHotKeyEvents::askForAll()
{
    const QPointer<DesktopHotKeyEvents> alive(this);
    QList<Reference> waiting;
    for (const auto& [reference, hotKey] : m_hotKeys)
        if (!hotKey.shortcut)
            waiting << reference;
    if (!waiting.isEmpty() && !m_service.isReady()) {
        m_service.open();
        return;
    }
    for (const Reference reference : std::as_const(waiting)) {
        if (m_service.owner().isEmpty())
            answer(reference, {.isBound = false});
        else
            askFor(reference);
        if (!alive)
            return;
    }
}

void DesktopHotKeyEvents::askFor(Reference reference)
{
    HotKey& hotKey = m_hotKeys.at(reference);
    hotKey.shortcut = m_ask(hotKey.wish);
    const DesktopShortcut* const shortcut = hotKey.shortcut.get();
    connect(shortcut, &DesktopShortcut::answered, this,
            [this, reference](const HotKeyBinding& binding) { answer(reference, binding); });
    connect(shortcut, &DesktopShortcut::pressed, this,
            [this, &hotKey](quint64 time) { press(hotKey, time); });
    connect(shortcut, &DesktopShortcut::released, this,
            [this, &hotKey](quint64 time) { lift(hotKey, time); });
}

void DesktopHotKeyEvents::forgetAll()
{
    for (auto& [reference, hotKey] : m_hotKeys) {
        hotKey.shortcut.reset();
        hotKey.isPressed = false;
    }
}

void DesktopHotKeyEvents::setPaused(bool paused)
{
    for (auto& [reference, hotKey] : m_hotKeys) {
        hotKey.isPressed &= !paused;
        if (hotKey.shortcut)
            hotKey.shortcut->setPaused(paused);
    }
}

void DesktopHotKeyEvents::answer(Reference reference, const HotKeyBinding& binding)
{
    if (const BindingHandler handler = m_bindingHandler) // a copy: it may destroy this
        handler(reference, binding);
}

void DesktopHotKeyEvents::press(HotKey& hotKey, quint64 time)
{
    if (m_types.testFlag(hotKeyEvents) && !std::exchange(hotKey.isPressed, true)) // not repeated
        send(hotKey, hotKeyPressed, time);
}

void DesktopHotKeyEvents::lift(HotKey& hotKey, quint64 time)
{
    if (std::exchange(hotKey.isPressed, false))
        send(hotKey, hotKeyReleased, time);
}

void DesktopHotKeyEvents::send(const HotKey& hotKey, quint32 kind, quint64 time) const
{
    if (const Handler handler = m_handler) // a copy: it may destroy this
        handler({.kind = kind, .identity = hotKey.identity, .time = static_cast<quint32>(time)});
}

} // namespace varno
