#pragma once

#include "recorder/ShortcutRefusal.h"

#include <QMessageBox>

namespace varno {

/// Tells why a combination is refused. It is modal to the window of `field`, or to the program
/// where there is none, and shown on construction.
class RefusalAlert : public QMessageBox {
    Q_OBJECT

public:
    RefusalAlert(const ShortcutRefusal& refusal, const QString& description, QWidget& field);
    /// Activates its window, which not every window manager does.
    ~RefusalAlert() override;
    Q_DISABLE_COPY_MOVE(RefusalAlert)

    /// The button that accepts the combination anyway; null where that is not offered.
    [[nodiscard]] QAbstractButton* forceButton() const { return m_force; }

private:
    QAbstractButton* m_force = nullptr;
};

} // namespace varno
