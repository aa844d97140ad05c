#pragma once

#include "platform/HotKeyEvents.h"
#include "shortcuts/Shortcut.h"

#include <QOperatingSystemVersion>

#include <functional>
#include <map>
#include <utility>

namespace varno {

/// The shortcuts that are registered with the system, and the way from its events to their owners.
/// Destroying it gives all of them back.
class HotKeyCenter {
public:
    static constexpr quint32 signature = 0x53534B53;

    struct Callbacks {
        std::function<void()> keyDown{};
        std::function<void()> keyUp{};
    };

    using RefusalHandler = std::function<void(const Shortcut&)>;

    /// `events` outlives it. `system` decides which events there are to listen to.
    explicit HotKeyCenter(HotKeyEvents& events, const QOperatingSystemVersion& system =
                                                    QOperatingSystemVersion::current());
    ~HotKeyCenter();
    Q_DISABLE_COPY_MOVE(HotKeyCenter)

    /// False if the system refuses. A shortcut can be registered once at a time.
    [[nodiscard]] bool add(const Shortcut& shortcut, Callbacks callbacks);
    /// Without effect for one that is not registered.
    void remove(const Shortcut& shortcut);
    [[nodiscard]] bool isRegistered(const Shortcut& shortcut) const;

    /// Told of a shortcut that was added and that the system has refused since; it is forgotten.
    void setRefusalHandler(RefusalHandler handler) { m_refusalHandler = std::move(handler); }

    /// While it is paused the shortcuts stay registered, but nothing is called.
    void setPaused(bool paused);

    /// Answers an event of the system. A callback may destroy this.
    int handle(const HotKeyEvent& event);

    /// The window system's time of the last event, for the activation of a window; 0 before it.
    [[nodiscard]] quint32 lastEventTime() const { return m_lastEventTime; }

private:
    struct HotKey {
        Shortcut shortcut{0, 0};
        HotKeyEvents::Reference reference = 0;
        Callbacks callbacks{};
    };
    using HotKeys = std::map<quint32, HotKey>;

    [[nodiscard]] HotKeys::const_iterator find(const Shortcut& shortcut) const;
    [[nodiscard]] HotKeys::const_iterator target(const HotKeyEvent& event) const;
    void installHandler();
    void forget(HotKeyEvents::Reference reference);

    HotKeyEvents& m_events;
    HotKeyEvents::EventTypes m_types = HotKeyEvents::hotKeyEvents;
    RefusalHandler m_refusalHandler;
    HotKeys m_hotKeys; ///< by the ids that the system has
    quint32 m_lastId = 0;
    quint32 m_lastEventTime = 0;
    bool m_installed = false;
    bool m_paused = false;
};

} // namespace varno
