#include "platform/linux/PortalHotKeyEvents.h"

#include "platform/linux/PortalConnection.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

/// It answers to every binding with its system settings, and binds nothing.
bool isPlasma5()
{
    return qEnvironmentVariable("KDE_SESSION_VERSION") == "5"_L1;
}

} // namespace

PortalHotKeyEvents::PortalHotKeyEvents(PortalConnection& portal, const Keyboard& keyboard)
    : m_portal(portal)
    , m_keyboard(keyboard)
{
    m_nextTurn.setSingleShot(true);
    connect(&m_nextTurn, &QTimer::timeout, this, &PortalHotKeyEvents::bind);
    connect(&portal, &PortalConnection::ready, this, [this] {
        endSession(); // another portal knows nothing of it
        bind();
    });
    connect(&portal, &PortalConnection::lost, this, &PortalHotKeyEvents::endSession);
}

PortalHotKeyEvents::~PortalHotKeyEvents() = default;

std::optional<HotKeyEvents::Reference>
PortalHotKeyEvents::registerHotKey(int carbonKeyCode, int carbonModifiers, HotKeyIdentity identity)
{
    const auto shortcut = portalShortcut(carbonKeyCode, carbonModifiers, m_keyboard);
    if (!shortcut || find(shortcut->id) != m_hotKeys.end() || isPlasma5())
        return std::nullopt;
    m_hotKeys.emplace(++m_lastReference, HotKey{.shortcut = *shortcut, .identity = identity});
    m_nextTurn.start(0);
    return m_lastReference;
}

void PortalHotKeyEvents::unregisterHotKey(Reference reference)
{
    if (m_hotKeys.erase(reference) > 0)
        m_nextTurn.start(0);
}

void PortalHotKeyEvents::setRefusalHandler(const RefusalHandler& handler)
{
    m_refusalHandler = handler;
}

void PortalHotKeyEvents::installHandler(Handler handler)
{
    m_handler = std::move(handler);
}

void PortalHotKeyEvents::addEventTypes(EventTypes types)
{
    m_types |= types;
}

void PortalHotKeyEvents::removeEventTypes(EventTypes types)
{
    m_types &= ~types;
    if (!m_types.testFlag(hotKeyEvents))
        liftAll();
}

bool PortalHotKeyEvents::isReserved(int /*carbonKeyCode*/, int /*carbonModifiers*/)
{
    return false;
}

PortalHotKeyEvents::HotKeys::iterator PortalHotKeyEvents::find(const QString& id)
{
    return std::find_if(m_hotKeys.begin(), m_hotKeys.end(),
                        [&](const auto& entry) { return entry.second.shortcut.id == id; });
}

void PortalHotKeyEvents::bind()
{
    QList<PortalShortcut> wanted;
    QSet<QString> ids;
    for (const auto& [reference, hotKey] : m_hotKeys) {
        wanted << hotKey.shortcut;
        ids << hotKey.shortcut.id;
    }
    if (m_session && !ids.isEmpty() && m_session->ids() == ids)
        return;
    endSession();
    if (wanted.isEmpty())
        return;
    if (!m_portal.isReady())
        m_portal.open();
    else if (m_portal.owner().isEmpty())
        refuse(ids);
    else
        beginSession(wanted);
}

void PortalHotKeyEvents::beginSession(const QList<PortalShortcut>& shortcuts)
{
    m_session = std::make_unique<PortalShortcutSession>(m_portal, shortcuts);
    const PortalShortcutSession* const session = m_session.get();
    connect(session, &PortalShortcutSession::refused, this, &PortalHotKeyEvents::refuse);
    connect(session, &PortalShortcutSession::activated, this, &PortalHotKeyEvents::press);
    connect(session, &PortalShortcutSession::deactivated, this, &PortalHotKeyEvents::lift);
}

void PortalHotKeyEvents::endSession()
{
    m_session.reset();
    liftAll();
}

void PortalHotKeyEvents::liftAll()
{
    for (auto& [reference, hotKey] : m_hotKeys)
        hotKey.isPressed = false;
}

void PortalHotKeyEvents::refuse(const QSet<QString>& ids)
{
    const QPointer<PortalHotKeyEvents> alive(this);
    m_nextTurn.start(0); // the session may be empty now
    for (const QString& id : QSet<QString>(ids)) {
        const auto found = find(id);
        if (found == m_hotKeys.end())
            continue;
        const Reference reference = found->first;
        m_hotKeys.erase(found);
        if (const RefusalHandler handler = m_refusalHandler) // a copy: it may destroy this
            handler(reference);
        if (!alive)
            return;
    }
}

void PortalHotKeyEvents::press(const QString& id, quint64 time)
{
    const auto found = find(id);
    if (found == m_hotKeys.end() || !m_types.testFlag(hotKeyEvents) ||
        std::exchange(found->second.isPressed, true))
        return; // repeated
    send(found->second, hotKeyPressed, time);
}

void PortalHotKeyEvents::lift(const QString& id, quint64 time)
{
    const auto found = find(id);
    if (found != m_hotKeys.end() && std::exchange(found->second.isPressed, false))
        send(found->second, hotKeyReleased, time);
}

void PortalHotKeyEvents::send(const HotKey& hotKey, quint32 kind, quint64 time) const
{
    if (const Handler handler = m_handler) // a copy: it may destroy this
        handler({.kind = kind, .identity = hotKey.identity, .time = static_cast<quint32>(time)});
}

} // namespace varno
