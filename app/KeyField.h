#pragma once

#include "kit/PlainButton.h"

#include <QLineEdit>

namespace varno {

/// A field for a secret, masked until it is revealed, with the button that does so over its end.
/// Nothing that was in it can be brought back by undoing once it is `forget`ed, and what is
/// selected goes to the clipboard only when it is copied.
class KeyField final : public QLineEdit {
    Q_OBJECT

public:
    explicit KeyField(QWidget* parent = nullptr);

    [[nodiscard]] bool isRevealed() const { return echoMode() == Normal; }
    void setRevealed(bool revealed);
    void forget();
    /// Whether the secret can be typed and the button be pressed.
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
