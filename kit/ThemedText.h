#pragma once

#include "kit/TextBlock.h"

#include <QLabel>

namespace varno {

/// A plain text of the interface in the colours of the inherited palette. An elided text is told by
/// its tool tip; of a longer text only as much is kept as a tool tip shows. The size is that of the
/// text, without margins. `QLabel::setAlignment` aligns it; by default it is aligned to the leading
/// edge and centred vertically.
class ThemedText : public QLabel {
    Q_OBJECT

public:
    explicit ThemedText(const QString& text = {}, const TextStyle& style = {},
                        Overflow overflow = Overflow::none, QWidget* parent = nullptr);

    void setText(const QString& text);

    void setTextStyle(const TextStyle& style);
    [[nodiscard]] const TextStyle& textStyle() const { return m_style; }

    /// Changes the opacity of the style, which only repaints.
    void setOpacity(double opacity);

    [[nodiscard]] bool isElided() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

    /// The text as it is drawn, valid until the next layout.
    [[nodiscard]] const TextBlock& block() const { return laidOut().block(width()); }
    /// The alignment, mirrored where the widget is.
    [[nodiscard]] Qt::Alignment visualAlignment() const;

private:
    [[nodiscard]] LaidOutText& laidOut() const;

    TextStyle m_style;
    Overflow m_overflow;
    mutable LaidOutText m_laidOut;
};

} // namespace varno
