#pragma once

#include "kit/PlainButton.h"
#include "kit/TextField.h"

namespace varno {

/// A text field for a secret, masked until its button reveals it. Once forgotten its text cannot be
/// restored by undoing; a selection reaches the clipboard only when it is copied.
class KeyField final : public TextField {
    Q_OBJECT

public:
    explicit KeyField(QWidget* parent = nullptr);

    [[nodiscard]] bool isRevealed() const { return echoMode() == Normal; }
    void setRevealed(bool revealed);
    void forget();
    /// Enables or disables typing and the button.
    void setUsable(bool usable);

Q_SIGNALS:
    void revealPressed();

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void placeButton();

    PlainButton m_reveal;
};

} // namespace varno
