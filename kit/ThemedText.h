#pragma once

#include "kit/TextBlock.h"

#include <QLabel>

namespace varno {

/// A text of the interface, plain always, in the colours of the palette that it inherits. An elided
/// text shows the whole of itself as its tool tip, and keeps no more than that can tell. It has no
/// space around it: its size is that of its text. `QLabel::setAlignment` places it; by default it
/// starts at the left, centred in height.
class ThemedText : public QLabel {
    Q_OBJECT

public:
    explicit ThemedText(const QString& text = {}, const TextStyle& style = {},
                        Overflow overflow = Overflow::none, QWidget* parent = nullptr);

    void setText(const QString& text);

    void setTextStyle(const TextStyle& style);
    [[nodiscard]] const TextStyle& textStyle() const { return m_style; }

    /// The style's opacity alone: repaints and does nothing else.
    void setOpacity(double opacity);

    [[nodiscard]] bool isElided() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] LaidOutText& laidOut() const;

    TextStyle m_style;
    Overflow m_overflow;
    mutable LaidOutText m_laidOut;
};

} // namespace varno
