#pragma once

#include "kit/PressableButton.h"

namespace varno {

/// The quiet button in the upper corner of a window without a frame, over what stands there. It is
/// seen while the pointer is at the upper edge of the window, and while it has the focus.
class CloseButton final : public PressableButton {
    Q_OBJECT

public:
    static constexpr int reach = 20; ///< from the corner: what is less far away is under it

    /// It follows the size of `window`; raise it above its siblings.
    explicit CloseButton(QWidget& window);

    bool eventFilter(QObject* window, QEvent* event) override;

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void place();
    void setRevealed(bool isRevealed);

    bool m_isRevealed = false;
};

} // namespace varno
