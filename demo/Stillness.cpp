#include "demo/Stillness.h"

#include "app/ScreenTransition.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

namespace varno {
namespace {

/// Several frames, also of a program that puts its changes off to the next frame.
constexpr qint64 longEnough = 120; // milliseconds

bool moves(QEvent::Type type)
{
    switch (type) {
    case QEvent::Resize:
    case QEvent::Move:
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::LayoutRequest:
    case QEvent::PaletteChange:
    case QEvent::FontChange:
    case QEvent::StyleChange:
    case QEvent::WindowActivate:
        return true;
    default:
        return false;
    }
}

} // namespace

Stillness::Stillness(const QWidget& window)
    : m_window(window)
{
    disturb();
    qApp->installEventFilter(this);
}

bool Stillness::isStill() const
{
    const auto* change = m_window.findChild<ScreenTransition*>();
    return !(change && change->isVisible()) && m_sinceLastMove.hasExpired(longEnough);
}

bool Stillness::eventFilter(QObject* receiver, QEvent* event)
{
    const auto* widget = qobject_cast<QWidget*>(receiver);
    if (widget && widget->window() == &m_window && moves(event->type()))
        disturb();
    return false;
}

} // namespace varno
