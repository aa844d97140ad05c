#pragma once

#include "kit/Theme.h"

#include <QWidget>

namespace varno {

/// The thickness to draw a line with, in points: whole device pixels, one at least, and no more
/// than it asks for, since what does not fit in its place is cut off in some places only.
[[nodiscard]] double wholePixels(double thickness, double devicePixelRatio);

/// A hairline along its place, by default in the border colour.
class Rule : public QWidget {
    Q_OBJECT

public:
    /// A line thinner than a device pixel is drawn one device pixel wide, and paler by as much.
    explicit Rule(Qt::Orientation orientation = Qt::Horizontal, double thickness = 1,
                  const Ink& ink = {.role = ColorRole::border}, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Qt::Orientation m_orientation;
    double m_thickness;
    Ink m_ink;
};

} // namespace varno
