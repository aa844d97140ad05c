#pragma once

#include <QAbstractButton>

namespace varno {

/// A button that is laid out like any widget: what is in it is to look at only. It answers to
/// hovering and pressing with a faint fill, and to Return and Space.
class RowButton : public QAbstractButton {
    Q_OBJECT

public:
    /// `name` is what a screen reader says.
    explicit RowButton(const QString& name = {}, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    /// Takes the mouse from everything in the layout: call it when the layout is complete.
    void setContent(QLayout* content);

    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

} // namespace varno
