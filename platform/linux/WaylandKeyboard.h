#pragma once

#include "platform/linux/LayerShell.h"
#include "platform/linux/WaylandOwned.h"

namespace varno {

/// Tells what a seat's keyboard is, when it changes.
class WaylandKeyboard {
public:
    /// The seat's events are for this alone. It tells in the event loop.
    WaylandKeyboard(WaylandOwned<wl_seat> seat, KeyboardWatcher watcher);
    ~WaylandKeyboard() = default;
    Q_DISABLE_COPY_MOVE(WaylandKeyboard)

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
