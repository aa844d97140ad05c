#include "demo/Camera.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QCursor>
#include <QDeadlineTimer>
#include <QKeyEvent>
#include <QPixmap>
#include <QScreen>
#include <QScrollBar>
#include <QTimer>
#include <QWidget>

namespace varno {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

Camera::Camera(QWidget& window, const QDir& folder)
    : m_window(window)
    , m_folder(folder)
    , m_stillness(window)
{
}

bool Camera::prepare()
{
    if (!waitUntil([this] { return m_window.isActiveWindow(); }))
        return giveUp(u"The window does not become the active one."_s);
    const QRect screen = m_window.screen()->geometry();
    QCursor::setPos(screen.bottomRight());
    m_window.move(screen.topLeft());
    return true;
}

bool Camera::waitUntil(const std::function<bool()>& condition) const
{
    const QDeadlineTimer deadline(20s);
    QTimer beat;
    beat.start(10ms);
    while (!condition()) {
        if (m_stopped || deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

bool Camera::settle()
{
    m_stillness.disturb();
    return waitUntil([this] { return m_stillness.isStill(); });
}

bool Camera::take(const QString& name)
{
    if (!settle())
        return giveUp(u"The window does not come to rest for “%1”."_s.arg(name));
    // The server knows where the window is; the window itself may have been moved in the meantime.
    const QPixmap picture = m_window.screen()->grabWindow(m_window.winId());
    if (picture.size() != m_window.size())
        return giveUp(u"The screen does not give its picture of the window."_s);
    const QString path = m_folder.filePath(name + u".png"_s);
    if (!picture.save(path))
        return giveUp(u"The file “%1” cannot be written."_s.arg(path));
    ++m_pictureCount;
    return true;
}

bool Camera::giveUp(const QString& sentence)
{
    if (m_error.isEmpty())
        m_error = sentence;
    return false;
}

void Camera::stop()
{
    m_stopped = true;
    giveUp(u"The tour was ended."_s);
}

void scrollToEnd(const QWidget& window)
{
    for (const QAbstractScrollArea* area : window.findChildren<QAbstractScrollArea*>()) {
        QScrollBar& bar = *area->verticalScrollBar();
        bar.setValue(bar.maximum());
    }
}

void typeKey(QWidget& receiver, int key, Qt::KeyboardModifiers modifiers, const QString& text,
             quint32 scanCode)
{
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, modifiers, scanCode, 0, 0, text);
        QCoreApplication::sendEvent(&receiver, &event);
    }
}

void typeText(QWidget& receiver, const QString& text)
{
    for (const QChar character : text)
        typeKey(receiver, 0, {}, QString(character));
}

} // namespace varno
