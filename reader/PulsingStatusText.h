#pragma once

#include "kit/Animation.h"
#include "kit/ThemedText.h"

namespace varno {

/// A status text whose opacity pulses.
class PulsingStatusText final : public ThemedText {
    Q_OBJECT

public:
    explicit PulsingStatusText(const QString& text, ColorRole color = ColorRole::text,
                               QWidget* parent = nullptr);

private:
    Animation m_pulse;
};

} // namespace varno
