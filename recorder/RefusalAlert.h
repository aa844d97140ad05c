#pragma once

#include "kit/PlainButton.h"
#include "kit/SymbolView.h"
#include "kit/ThemedText.h"
#include "recorder/ShortcutRefusal.h"

#include <QDialog>

namespace varno {

/// Tells why a combination is refused; accepted if it is to be taken anyway. It belongs to the
/// window of `field`, looks like a part of it and is modal to it, or to the program where there is
/// none. It is shown on construction.
class RefusalAlert : public QDialog {
    Q_OBJECT

public:
    RefusalAlert(const ShortcutRefusal& refusal, const QString& description, QWidget& field);
    /// Activates its window, which not every window manager does.
    ~RefusalAlert() override;
    Q_DISABLE_COPY_MOVE(RefusalAlert)

    [[nodiscard]] QString text() const { return m_text.text(); }
    [[nodiscard]] PlainButton& forceButton() { return m_force; } ///< hidden unless it is offered

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    SymbolView m_symbol;
    ThemedText m_text;
    ThemedText m_advice;
    PlainButton m_force;
    PlainButton m_ok;
};

} // namespace varno
