#pragma once

#include "kit/Animation.h"

#include <QCheckBox>

namespace varno {

/// On or off, in the accent colour when on. Needs an accessible name.
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
