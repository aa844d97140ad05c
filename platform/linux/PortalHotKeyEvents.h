#pragma once

#include "platform/HotKeyEvents.h"
#include "platform/linux/PortalShortcutSession.h"

#include <QObject>
#include <QTimer>

#include <map>
#include <memory>

namespace varno {

class Keyboard;
class PortalConnection;

/// Hot keys as global shortcuts of the desktop's portal, which asks the user. What is registered
/// in one turn of the event loop is asked for together. Where there is no portal when it is asked
/// first, all are refused for good.
class PortalHotKeyEvents final : public QObject, public HotKeyEvents {
    Q_OBJECT

public:
    /// Both outlive it.
    PortalHotKeyEvents(PortalConnection& portal, const Keyboard& keyboard);
    ~PortalHotKeyEvents() override;

    [[nodiscard]] std::optional<Reference> registerHotKey(int carbonKeyCode, int carbonModifiers,
                                                          HotKeyIdentity identity) override;
    void unregisterHotKey(Reference reference) override;
    void setRefusalHandler(const RefusalHandler& handler) override;
    void installHandler(Handler handler) override;
    void addEventTypes(EventTypes types) override;
    void removeEventTypes(EventTypes types) override;
    /// Never: the desktop tells its user.
    [[nodiscard]] bool isReserved(int carbonKeyCode, int carbonModifiers) override;

private:
    struct HotKey {
        PortalShortcut shortcut;
        HotKeyIdentity identity;
        bool isPressed = false;
    };

    using HotKeys = std::map<Reference, HotKey>;

    [[nodiscard]] HotKeys::iterator find(const QString& id);
    /// Makes the session hold what is registered.
    void bind();
    void beginSession(const QList<PortalShortcut>& shortcuts);
    void endSession();
    void liftAll();
    void refuse(const QSet<QString>& ids);
    void press(const QString& id, quint64 time);
    void lift(const QString& id, quint64 time);
    void send(const HotKey& hotKey, quint32 kind, quint64 time) const;

    PortalConnection& m_portal;
    const Keyboard& m_keyboard;
    Handler m_handler;
    RefusalHandler m_refusalHandler;
    EventTypes m_types;
    HotKeys m_hotKeys;
    std::unique_ptr<PortalShortcutSession> m_session;
    QTimer m_nextTurn;
    Reference m_lastReference = 0;
};

} // namespace varno
