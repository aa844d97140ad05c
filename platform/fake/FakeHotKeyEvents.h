#pragma once

#include "platform/HotKeyEvents.h"

#include <map>
#include <set>
#include <utility>

namespace varno {

/// A system whose events are made by hand, open to inspection.
class FakeHotKeyEvents final : public HotKeyEvents {
public:
    using Combination = std::pair<int, int>; ///< key code, modifiers

    struct Registration {
        Combination combination;
        HotKeyIdentity identity;
    };

    std::map<Reference, Registration> registered;
    std::set<Combination> reserved; ///< registering these fails
    Handler handler;
    BindingHandler bindingHandler;
    EventTypes types;
    int installations = 0;
    bool asksUser = false;

    /// What the handler answers; nothing if it does not get the event.
    [[nodiscard]] std::optional<int> send(const HotKeyEvent& event) const
    {
        const EventType type =
            event.eventClass == HotKeyEventClass::hotKey ? hotKeyEvents : keyboardEvents;
        if (!handler || !types.testFlag(type))
            return std::nullopt;
        return Handler(handler)(event);
    }

    /// As a system does that has asked its user.
    void bind(Reference reference, const HotKeyBinding& binding) const
    {
        if (const BindingHandler told = bindingHandler)
            told(reference, binding);
    }

    [[nodiscard]] std::optional<Reference> registerHotKey(int carbonKeyCode, int carbonModifiers,
                                                          HotKeyIdentity identity) override
    {
        const Combination combination(carbonKeyCode, carbonModifiers);
        if (reserved.contains(combination))
            return std::nullopt;
        registered.emplace(++m_lastReference, Registration{combination, identity});
        return m_lastReference;
    }

    void unregisterHotKey(Reference reference) override { registered.erase(reference); }

    void setBindingHandler(const BindingHandler& newHandler) override
    {
        bindingHandler = newHandler;
    }

    [[nodiscard]] bool bindsLater() const override { return asksUser; }

    void installHandler(Handler newHandler) override
    {
        installations += newHandler ? 1 : 0;
        handler = std::move(newHandler);
    }

    void addEventTypes(EventTypes added) override { types |= added; }
    void removeEventTypes(EventTypes removed) override { types &= ~removed; }

    [[nodiscard]] bool isReserved(int carbonKeyCode, int carbonModifiers) override
    {
        return reserved.contains({carbonKeyCode, carbonModifiers});
    }

private:
    Reference m_lastReference = 0;
};

} // namespace varno
