#pragma once

#include <QAbstractButton>

namespace varno {

/// The base of all buttons: one that Return presses as Space does, and that follows the mouse. An
/// elided text in it shows the whole of itself when there is no other tool tip.
class PressableButton : public QAbstractButton {
    Q_OBJECT

public:
    explicit PressableButton(QWidget* parent = nullptr);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

    /// How strong the fill is that answers to the mouse.
    [[nodiscard]] double hoverOpacity() const { return isDown() ? 0.12 : 0.06; }
};

} // namespace varno
