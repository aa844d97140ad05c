#pragma once

#include "recorder/ShortcutRefusal.h"

#include <QMessageBox>

namespace varno {

/// Tells why a combination is refused. It belongs to the window around `field`, or, where there is
/// none, to the whole program. Returns at once.
class RefusalAlert : public QMessageBox {
    Q_OBJECT

public:
    RefusalAlert(const ShortcutRefusal& refusal, const QString& description, QWidget& field);
    /// Gives the keyboard back to its window: not every window manager does.
    ~RefusalAlert() override;
    Q_DISABLE_COPY_MOVE(RefusalAlert)

    /// The button that takes the combination anyway; none where that is not offered.
    [[nodiscard]] QAbstractButton* forceButton() const { return m_force; }

private:
    QAbstractButton* m_force = nullptr;
};

} // namespace varno
