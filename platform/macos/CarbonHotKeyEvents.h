#pragma once

#include "platform/HotKeyEvents.h"

#include <Carbon/Carbon.h>

#include <map>

namespace varno {

/// Hot keys by the Carbon event manager, which reports them from the main run loop. The system's
/// own are known; that another program has registered a combination, too, is not.
class CarbonHotKeyEvents final : public HotKeyEvents {
public:
    CarbonHotKeyEvents() = default;
    ~CarbonHotKeyEvents() override;
    Q_DISABLE_COPY_MOVE(CarbonHotKeyEvents)

    [[nodiscard]] std::optional<Reference> registerHotKey(int carbonKeyCode, int carbonModifiers,
                                                          HotKeyIdentity identity) override;
    void unregisterHotKey(Reference reference) override;
    void installHandler(Handler handler) override;
    void addEventTypes(EventTypes types) override;
    void removeEventTypes(EventTypes types) override;
    [[nodiscard]] bool isReserved(int carbonKeyCode, int carbonModifiers) override;

private:
    static OSStatus onEvent(EventHandlerCallRef, EventRef event, void* user);

    Handler m_handler;
    EventHandlerRef m_installed = nullptr; ///< from the first handler on
    EventTypes m_types;
    std::map<Reference, EventHotKeyRef> m_hotKeys;
    Reference m_lastReference = 0;
};

} // namespace varno
