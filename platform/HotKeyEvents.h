#pragma once

#include <QFlags>
#include <QString>

#include <functional>
#include <optional>

namespace varno {

/// What the owner of a hot key calls it; events carry it back.
struct HotKeyIdentity {
    quint32 signature = 0; ///< four characters that tell whose it is
    quint32 id = 0;
};

/// The answers to an event; any other is a failure of the system.
enum HotKeyStatus : int { hotKeyEventHandled = 0, eventNotHandledErr = -9874 };

/// What an event tells of.
enum class HotKeyEventClass : quint8 {
    hotKey,   ///< kinds `hotKeyPressed` and `hotKeyReleased`, with the identity
    keyboard, ///< kinds `rawKeyDown` and `rawKeyUp`, with the key and its modifiers
};

/// The kinds of each class, as the Carbon event manager has them.
enum HotKeyEventKind : quint32 {
    rawKeyDown = 1,
    rawKeyUp = 3,
    hotKeyPressed = 5,
    hotKeyReleased = 6,
};

struct HotKeyEvent {
    HotKeyEventClass eventClass = HotKeyEventClass::hotKey;
    quint32 kind = 0;
    int parameterStatus = 0; ///< not 0: the parameters below could not be read, and why
    HotKeyIdentity identity{};
    int carbonKeyCode = 0;
    int carbonModifiers = 0;
    quint32 time = 0; ///< the window system's, which it wants to see when a window is activated
};

/// What the system has made of a registered hot key.
struct HotKeyBinding {
    bool isBound = true;
    QString trigger{};     ///< the combination, as the system names it; empty: as registered
    bool isCertain = true; ///< false until a system that asks its user has answered

    friend bool operator==(const HotKeyBinding&, const HotKeyBinding&) = default;
};

/// The keys that the system reports to this program whichever program has the focus. Keys are
/// positions on the keyboard, told by their Carbon virtual key codes, and modifiers a Carbon mask.
/// Main thread only.
class HotKeyEvents {
public:
    using Reference = quint32;
    using Handler = std::function<int(const HotKeyEvent&)>;
    using BindingHandler = std::function<void(Reference, const HotKeyBinding&)>;

    enum EventType : quint8 { hotKeyEvents = 1, keyboardEvents = 2 };
    Q_DECLARE_FLAGS(EventTypes, EventType)

    virtual ~HotKeyEvents() = default;

    /// Nothing if the system refuses: the combination is somebody else's, or there is no such key.
    /// One that asks its user refuses later: see `setBindingHandler`.
    [[nodiscard]] virtual std::optional<Reference>
    registerHotKey(int carbonKeyCode, int carbonModifiers, HotKeyIdentity identity) = 0;
    virtual void unregisterHotKey(Reference reference) = 0;

    /// Told, from the event loop, what the system has made of a hot key after all: what its user
    /// has decided, now or later. One that is not bound stays registered and may be bound later. An
    /// empty handler takes it off. It may destroy this object. Systems that bind at once, and
    /// nothing else, never call it.
    virtual void setBindingHandler(const BindingHandler& /*handler*/) {}
    /// Whether it tells that handler of every hot key, which is uncertain until then.
    [[nodiscard]] virtual bool bindsLater() const { return false; }

    /// The one handler of events, called from the event loop; an empty one takes it off. It may
    /// destroy this object.
    virtual void installHandler(Handler handler) = 0;

    /// Which events the handler gets; none at first. As long as those of hot keys are not among
    /// them, the registered keys stay registered, but go to the window that has the focus.
    virtual void addEventTypes(EventTypes types) = 0;
    virtual void removeEventTypes(EventTypes types) = 0;

    /// Whether the system or another program has the combination for itself.
    [[nodiscard]] virtual bool isReserved(int carbonKeyCode, int carbonModifiers) = 0;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(HotKeyEvents::EventTypes)

} // namespace varno
