#pragma once

#include <QAbstractButton>

namespace varno {

/// The base of all buttons: Return presses it as Space does, other keys are left to what it stands
/// in unless it is one of several that exclude each other, and hovering repaints it. A text in it
/// that is elided is told by a tool tip unless there is another.
class PressableButton : public QAbstractButton {
    Q_OBJECT

public:
    explicit PressableButton(QWidget* parent = nullptr);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

    /// The opacity of the fill while the pointer hovers or presses.
    [[nodiscard]] double hoverOpacity() const { return isDown() ? 0.12 : 0.06; }
};

} // namespace varno
