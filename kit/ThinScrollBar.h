#pragma once

#include <QScrollBar>

namespace varno {

/// A vertical scroll bar that shows a thumb in the text colour and nothing else.
class ThinScrollBar final : public QScrollBar {
    Q_OBJECT

public:
    explicit ThinScrollBar(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintThumb(const QRectF& place, const QColor& color);
};

} // namespace varno
