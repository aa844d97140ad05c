#pragma once

#include "platform/linux/DesktopShortcut.h"

#include <QTimer>

#include <functional>
#include <map>
#include <memory>

namespace varno {

class DesktopService;

/// Hot keys as shortcuts that a service of the desktop keeps, and tells its user of. They are asked
/// for once the service is there, and again whenever it has come back.
class DesktopHotKeyEvents final : public QObject, public HotKeyEvents {
    Q_OBJECT

public:
    struct Wish {
        int carbonKeyCode = 0;
        int carbonModifiers = 0;
        bool isNew = false; ///< it takes the place of one that was there before
    };
    using Ask = std::function<std::unique_ptr<DesktopShortcut>(const Wish&)>;

    /// `service` outlives it. `ask` is called while that has an owner.
    DesktopHotKeyEvents(DesktopService& service, Ask ask);
    ~DesktopHotKeyEvents() override;

    [[nodiscard]] std::optional<Reference> registerHotKey(int carbonKeyCode, int carbonModifiers,
                                                          HotKeyIdentity identity) override;
    void unregisterHotKey(Reference reference) override;
    void setBindingHandler(const BindingHandler& handler) override;
    [[nodiscard]] bool bindsLater() const override { return true; }
    void installHandler(Handler handler) override;
    void addEventTypes(EventTypes types) override;
    void removeEventTypes(EventTypes types) override;
    /// Never: what the desktop has for itself does not come here to be asked about.
    [[nodiscard]] bool isReserved(int carbonKeyCode, int carbonModifiers) override;

private:
    struct HotKey {
        Wish wish;
        HotKeyIdentity identity;
        std::unique_ptr<DesktopShortcut> shortcut{}; ///< none before the service is there
        bool isPressed = false;
    };

    void askForAll();
    void askFor(Reference reference);
    void forgetAll();
    void setPaused(bool paused);
    void answer(Reference reference, const HotKeyBinding& binding);
    void press(HotKey& hotKey, quint64 time);
    void lift(HotKey& hotKey, quint64 time);
    void send(const HotKey& hotKey, quint32 kind, quint64 time) const;

    DesktopService& m_service;
    Ask m_ask;
    Handler m_handler;
    BindingHandler m_bindingHandler;
    EventTypes m_types;
    std::map<Reference, HotKey> m_hotKeys;
    QTimer m_nextTurn;
    Reference m_lastReference = 0;
    bool m_hasDropped = false; ///< a hot key, so that the next is the user's new wish
};

} // namespace varno
