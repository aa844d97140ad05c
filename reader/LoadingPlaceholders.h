#pragma once

#include "kit/Animation.h"

#include <QWidget>

namespace varno {

/// A placeholder bar for a text that is loading.
class PlaceholderBar final : public QWidget {
    Q_OBJECT

public:
    explicit PlaceholderBar(int width, QWidget* parent = nullptr);

    /// Starts to pulse after a delay.
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

    /// Starts the ripple anew.
    void start();

private:
    QList<PlaceholderBar*> m_bars;
};

} // namespace varno
