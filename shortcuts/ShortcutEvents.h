#pragma once

#include "shortcuts/KeyboardShortcuts.h"

#include <QPointer>

namespace varno {

/// Announces the presses and releases of one name's shortcut until it is destroyed. It may outlive
/// the `KeyboardShortcuts` that made it.
class ShortcutEvents : public QObject {
    Q_OBJECT

public:
    ShortcutEvents(KeyboardShortcuts& shortcuts, const KeyboardShortcuts::Name& name);
    ~ShortcutEvents() override;

Q_SIGNALS:
    void keyDown();
    void keyUp();

private:
    QPointer<KeyboardShortcuts> m_shortcuts;
    QString m_name;
    HandlerTable::Handle m_keyDown;
    HandlerTable::Handle m_keyUp;
};

} // namespace varno
