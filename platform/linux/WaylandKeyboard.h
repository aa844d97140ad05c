#pragma once

#include "platform/linux/LayerShell.h"
#include "platform/linux/WaylandOwned.h"

namespace varno {

/// A seat's keyboard, as the compositor reports it; the toolkit hears of it as well.
class WaylandKeyboard {
public:
    /// The seat's events are for this alone.
    explicit WaylandKeyboard(WaylandOwned<wl_seat> seat);
    ~WaylandKeyboard() = default;
    Q_DISABLE_COPY_MOVE(WaylandKeyboard)

    /// Tells what is known, and what changes.
    void setWatcher(KeyboardWatcher watcher);

private:
    void listen();
    void takeKeymap(int file, quint32 size);
    void takeLayout(quint32 group);

    WaylandOwned<wl_seat> m_seat;
    KeyboardWatcher m_watcher;
    WaylandOwned<wl_keyboard> m_keyboard; ///< none without such a device
    QByteArray m_keymap;
    quint32 m_layout = 0;
};

} // namespace varno
