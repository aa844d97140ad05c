#pragma once

#include "kit/Animation.h"

#include <QCheckBox>

namespace varno {

/// A switch, in the accent colour while it is on. It needs an accessible name.
class Switch final : public QCheckBox {
    Q_OBJECT

public:
    explicit Switch(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    [[nodiscard]] bool hitButton(const QPoint& position) const override;
    void paintEvent(QPaintEvent* event) override;

private:
    double m_knob = 0; ///< from 0, off, to 1, on
    Animation m_motion;
};

} // namespace varno
