#include "app/HeldKeys.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace varno {

/// The server lifts a held key and presses it again at the same time, as nobody can.
bool HeldKeys::eventFilter(QObject* window, QEvent* event)
{
    const auto* key = dynamic_cast<QKeyEvent*>(event);
    if (!key)
        return false;
    if (key->type() == QEvent::KeyRelease) {
        m_lifted = key->key();
        m_liftedAt = key->timestamp();
        return false;
    }
    if (key->isAutoRepeat() || key->key() != m_lifted || key->timestamp() != m_liftedAt ||
        m_liftedAt == 0)
        return false;
    QKeyEvent repeated(key->type(), key->key(), key->modifiers(), key->nativeScanCode(),
                       key->nativeVirtualKey(), key->nativeModifiers(), key->text(), true);
    repeated.setTimestamp(key->timestamp());
    QCoreApplication::sendEvent(window, &repeated);
    event->setAccepted(repeated.isAccepted() || key->type() == QEvent::ShortcutOverride);
    return true;
}

} // namespace varno
