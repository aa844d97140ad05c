#pragma once

#include "kit/Animation.h"

#include <QWidget>

namespace varno {

/// One bar in the place of a text that is still to come.
class PlaceholderBar final : public QWidget {
    Q_OBJECT

public:
    explicit PlaceholderBar(int width, QWidget* parent = nullptr);

    /// Pulses from now on, after a delay.
    void pulse(std::chrono::milliseconds delay);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int m_width;
    double m_opacity;
    Animation m_pulse;
};

/// Six bars that pulse in a ripple from top to bottom.
class LoadingPlaceholders final : public QWidget {
    Q_OBJECT

public:
    explicit LoadingPlaceholders(QWidget* parent = nullptr);

    /// Begins the ripple anew.
    void start();

private:
    QList<PlaceholderBar*> m_bars;
};

} // namespace varno
