#pragma once

#include "kit/PressableButton.h"

namespace varno {

/// A button that is laid out like any widget: what is in it is to look at only. It answers to
/// hovering and pressing with a faint fill.
class RowButton : public PressableButton {
    Q_OBJECT

public:
    /// `name` is what a screen reader says.
    explicit RowButton(const QString& name = {}, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    /// Takes the mouse from everything in the layout: call it when the layout is complete.
    void setContent(QLayout* content);

    void paintEvent(QPaintEvent* event) override;
};

} // namespace varno
