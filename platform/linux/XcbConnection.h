#pragma once

#include "platform/linux/XcbReply.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <xcb/xcb.h>

#include <memory>

namespace varno {

/// A connection to the X server for the keyboard alone, so that it works with whatever toolkit
/// draws the windows, or none. Main thread only.
///
/// It may be none from the start, or be lost; it does not come back. Requests go nowhere then.
class XcbConnection : public QObject {
    Q_OBJECT

public:
    /// To the server that DISPLAY names.
    XcbConnection();
    ~XcbConnection() override;

    [[nodiscard]] bool isOpen() const;
    [[nodiscard]] xcb_connection_t* get() const { return m_connection.get(); }
    [[nodiscard]] const xcb_setup_t* setup() const { return xcb_get_setup(get()); }

    /// Events that came while somebody waited for a reply are announced from the event loop. To be
    /// called after every wait.
    void readLater();

    /// Waits until the server has done the request; whether it has succeeded.
    [[nodiscard]] bool check(xcb_void_cookie_t request);

Q_SIGNALS:
    /// Of keys that this connection has grabbed. One that is held down is pressed again
    /// and again, and released once.
    void keyPressed(quint8 keyCode, quint16 state, quint32 time);
    void keyReleased(quint8 keyCode, quint32 time);
    /// Another keymap, or another keyboard; once for several changes in a row.
    void keymapChanged();
    /// Another of the keymap's layouts.
    void layoutSwitched();

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    void setUpKeyboardExtension();
    void read();
    void announce(const xcb_generic_event_t& event);
    void announceKeyboardEvent(const xcb_generic_event_t& event);

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_keymapTimer;
    quint8 m_keyboardEvent = 0; ///< the type of all events of the keyboard extension, 0 without it
};

} // namespace varno
