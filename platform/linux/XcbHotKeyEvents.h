#pragma once

#include "platform/HotKeyEvents.h"
#include "platform/linux/XcbModifierMap.h"

#include <QObject>

#include <map>

namespace varno {

class XcbConnection;

/// Hot keys as passive grabs of an X server. Where there is no server, or no more, every
/// registration fails.
class XcbHotKeyEvents final : public QObject, public HotKeyEvents {
    Q_OBJECT

public:
    /// `connection` outlives it.
    explicit XcbHotKeyEvents(XcbConnection& connection);
    ~XcbHotKeyEvents() override;

    [[nodiscard]] std::optional<Reference> registerHotKey(int carbonKeyCode, int carbonModifiers,
                                                          HotKeyIdentity identity) override;
    void unregisterHotKey(Reference reference) override;
    void installHandler(Handler handler) override;
    void addEventTypes(EventTypes types) override;
    void removeEventTypes(EventTypes types) override;
    [[nodiscard]] bool isReserved(int carbonKeyCode, int carbonModifiers) override;

private:
    struct Combination {
        quint8 keyCode = 0;
        int carbonModifiers = 0;

        friend bool operator==(const Combination&, const Combination&) = default;
    };
    struct HotKey {
        Combination combination;
        HotKeyIdentity identity;
        bool isGrabbed = false;
    };

    [[nodiscard]] std::optional<Combination> combination(int carbonKeyCode,
                                                         int carbonModifiers) const;
    [[nodiscard]] const HotKey* find(const Combination& combination) const;
    /// All of it or nothing.
    [[nodiscard]] bool grab(const Combination& combination);
    void release(const Combination& combination);
    void grabAll();
    /// They stay registered.
    void releaseAll();
    void grabAgain();
    void press(quint8 keyCode, quint16 state, quint32 time);
    void liftKey(quint8 keyCode, quint32 time);
    void send(const HotKey& hotKey, quint32 kind, quint32 time) const;

    XcbConnection& m_connection;
    XcbModifierMap m_modifiers;
    Handler m_handler;
    EventTypes m_types;
    std::map<Reference, HotKey> m_hotKeys;
    std::map<quint8, Reference> m_pressed; ///< by key code
    Reference m_lastReference = 0;
};

} // namespace varno
