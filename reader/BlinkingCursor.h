#pragma once

#include "kit/Animation.h"

#include <QWidget>

namespace varno {

/// The bar at the end of a text that is streaming; it fades out and in once a second.
class BlinkingCursor final : public QWidget {
    Q_OBJECT

public:
    explicit BlinkingCursor(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double m_opacity = 1;
    Animation m_blink;
};

} // namespace varno
