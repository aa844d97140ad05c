#pragma once

#include "platform/HotKeyEvents.h"
#include "shortcuts/Shortcut.h"

#include <QOperatingSystemVersion>

#include <functional>
#include <map>
#include <utility>

namespace varno {

/// Registers shortcuts with the system and dispatches its events to them. Destroying it unregisters
/// all of them.
class HotKeyCenter {
public:
    static constexpr quint32 signature = 0x53534B53;

    struct Callbacks {
        std::function<void()> keyDown{};
        std::function<void()> keyUp{};
    };

    using BindingHandler = std::function<void(const Shortcut&)>;

    /// `events` outlives it. `system` decides which types of events are handled.
    explicit HotKeyCenter(HotKeyEvents& events, const QOperatingSystemVersion& system =
                                                    QOperatingSystemVersion::current());
    ~HotKeyCenter();
    Q_DISABLE_COPY_MOVE(HotKeyCenter)

    /// Registers a shortcut that is not there yet; false if the system refuses.
    [[nodiscard]] bool add(const Shortcut& shortcut, Callbacks callbacks);
    /// Unregisters a shortcut; without effect if it is not there.
    void remove(const Shortcut& shortcut);
    /// What the system has made of a shortcut; not bound if it is not there.
    [[nodiscard]] HotKeyBinding binding(const Shortcut& shortcut) const;

    /// `handler` is called with a shortcut of which the system has made something else.
    void setBindingHandler(BindingHandler handler) { m_bindingHandler = std::move(handler); }

    /// Pausing keeps the shortcuts registered, but calls nothing.
    void setPaused(bool paused);

    /// Dispatches an event, and returns the status that the system expects. A callback may destroy
    /// this.
    int handle(const HotKeyEvent& event);

    /// The window system's time of the last event, with which a window is activated; 0 before the
    /// first.
    [[nodiscard]] quint32 lastEventTime() const { return m_lastEventTime; }

private:
    struct HotKey {
        Shortcut shortcut{0, 0};
        HotKeyEvents::Reference reference = 0;
        Callbacks callbacks{};
        HotKeyBinding binding{};
    };
    using HotKeys = std::map<quint32, HotKey>;

    [[nodiscard]] HotKeys::const_iterator find(const Shortcut& shortcut) const;
    [[nodiscard]] HotKeys::const_iterator target(const HotKeyEvent& event) const;
    void installHandler();
    void take(HotKeyEvents::Reference reference, const HotKeyBinding& binding);

    HotKeyEvents& m_events;
    HotKeyEvents::EventTypes m_types = HotKeyEvents::hotKeyEvents;
    BindingHandler m_bindingHandler;
    HotKeys m_hotKeys; ///< by the ids that the system has
    quint32 m_lastId = 0;
    quint32 m_lastEventTime = 0;
    bool m_installed = false;
    bool m_paused = false;
};

} // namespace varno
