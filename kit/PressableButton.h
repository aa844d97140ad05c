#pragma once

#include <QAbstractButton>

namespace varno {

/// The base of all buttons: one that Return presses as Space does, and that follows the mouse.
class PressableButton : public QAbstractButton {
    Q_OBJECT

public:
    explicit PressableButton(QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;

    /// How strong the fill is that answers to the mouse.
    [[nodiscard]] double hoverOpacity() const { return isDown() ? 0.12 : 0.06; }
};

} // namespace varno
