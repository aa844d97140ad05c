#pragma once

#include "shortcuts/KeyboardShortcuts.h"

#include <QPointer>

namespace varno {

/// The presses and releases of one name's shortcut. Destroying it ends them; it may outlive the
/// shortcuts it came from.
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
    HandlerTable::Id m_keyDown;
    HandlerTable::Id m_keyUp;
};

} // namespace varno
