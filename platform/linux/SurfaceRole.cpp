#include "platform/linux/SurfaceRole.h"

#include <QDeadlineTimer>
#include <QEvent>
#include <QGuiApplication>
#include <QWindow>
#include <qpa/qplatformnativeinterface.h>

#include <poll.h>

namespace varno {
namespace {

/// The longest that a compositor may take to answer, in milliseconds. It answers within one.
constexpr int patience = 3000;

} // namespace

SurfaceRole::SurfaceRole(QWindow& window, const WaylandShells& shells)
    : QObject(&window)
    , m_window(window)
    , m_shells(shells)
{
    window.installEventFilter(this);
    connect(&window, &QWindow::visibleChanged, this, [this](bool visible) {
        if (!visible) // and the toolkit has not been told
            hide();
    });
}

SurfaceRole* SurfaceRole::of(const QWindow* window)
{
    return window ? window->findChild<SurfaceRole*>(QString(), Qt::FindDirectChildrenOnly)
                  : nullptr;
}

bool SurfaceRole::eventFilter(QObject* object, QEvent* event)
{
    if (object == &m_window && event->type() == QEvent::Show)
        show();
    else if (object == &m_window && event->type() == QEvent::Hide)
        m_window.destroy();
    return QObject::eventFilter(object, event);
}

wl_surface* SurfaceRole::surface() const
{
    QPlatformNativeInterface* const toolkit = QGuiApplication::platformNativeInterface();
    return m_window.handle() && toolkit
               ? static_cast<wl_surface*>(toolkit->nativeResourceForWindow("surface", &m_window))
               : nullptr;
}

/// Just before the toolkit draws.
void SurfaceRole::show()
{
    // The toolkit gives no role then, and forgets that when it creates the window again.
    m_window.setFlags(m_window.flags() | Qt::BypassWindowManagerHint);
    wl_surface* const shown = surface();
    const WaylandOwned<wl_event_queue> queue(wl_display_create_queue(m_shells.display));
    if (!shown || !take(*shown, *queue)) {
        drop();
        closeWindow();
    }
    // What came while the objects left the queue.
    wl_display_dispatch_queue_pending(m_shells.display, queue.get());
}

void SurfaceRole::hide()
{
    for (QWindow* const other : QGuiApplication::topLevelWindows())
        if (other->transientParent() == &m_window && other->isVisible() && of(other))
            other->close();
    drop();
}

bool SurfaceRole::wait(wl_event_queue& queue, const bool& answered) const
{
    wl_display* const display = m_shells.display;
    const QDeadlineTimer deadline(patience);
    while (!answered && !deadline.hasExpired()) {
        if (wl_display_prepare_read_queue(display, &queue) != 0) {
            wl_display_dispatch_queue_pending(display, &queue);
            continue;
        }
        wl_display_flush(display);
        pollfd socket = {.fd = wl_display_get_fd(display), .events = POLLIN, .revents = 0};
        if (::poll(&socket, 1, static_cast<int>(deadline.remainingTime())) > 0)
            wl_display_read_events(display);
        else
            wl_display_cancel_read(display);
        if (wl_display_dispatch_queue_pending(display, &queue) < 0)
            return false;
    }
    return answered;
}

void SurfaceRole::closeWindow()
{
    QMetaObject::invokeMethod(
        this, [this] { m_window.close(); }, Qt::QueuedConnection);
}

} // namespace varno
