#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <QSystemTrayIcon>
#include <QWidget>

#include <xcb/xcb.h>

#include <cstdlib>

// The least that a program of this kind can be: an icon in the status area, and an empty window
// that a key combination opens and hides when it is released.
//     varno-bare-tray KEYCODE MODIFIERS     as the X server counts them

namespace {

class EmptyWindow final : public QWidget, public QAbstractNativeEventFilter {
public:
    EmptyWindow(xcb_connection_t* connection, xcb_keycode_t key, quint16 modifiers)
        : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
        , m_key(key)
    {
        resize(860, 620);
        move(screen()->availableGeometry().center() - rect().center());
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
        xcb_grab_key(connection, 0, root, modifiers, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        xcb_flush(connection);
    }

    bool nativeEventFilter(const QByteArray&, void* message, qintptr*) override
    {
        const auto* event = static_cast<const xcb_key_release_event_t*>(message);
        if (event->response_type != XCB_KEY_RELEASE || event->detail != m_key)
            return false;
        setVisible(!isVisible());
        if (isVisible())
            activateWindow();
        return true;
    }

protected:
    void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(rect(), Qt::gray); }

private:
    xcb_keycode_t m_key;
};

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const auto* x11 = application.nativeInterface<QNativeInterface::QX11Application>();
    if (argc < 3 || !x11)
        return 2;
    QGuiApplication::setQuitOnLastWindowClosed(false);
    EmptyWindow window(x11->connection(), xcb_keycode_t(std::atoi(argv[1])),
                       quint16(std::atoi(argv[2])));
    qApp->installNativeEventFilter(&window);
    QPixmap image(22, 22);
    image.fill(Qt::gray);
    QSystemTrayIcon icon((QIcon(image)));
    icon.show();
    return QApplication::exec();
}
