#pragma once

#include "kit/PressableButton.h"

namespace varno {

/// A button with a layout of widgets that only show something. Hovering and pressing fill it
/// faintly.
class RowButton : public PressableButton {
    Q_OBJECT

public:
    /// `name` is the accessible name.
    explicit RowButton(const QString& name = {}, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    /// Sets the layout, which is complete, and makes its widgets transparent for the mouse.
    void setContent(QLayout* content);

    void paintEvent(QPaintEvent* event) override;
};

} // namespace varno
