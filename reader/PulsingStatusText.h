#pragma once

#include "kit/Animation.h"
#include "kit/ThemedText.h"

namespace varno {

/// What is being done, in a text that goes paler and back again.
class PulsingStatusText final : public ThemedText {
    Q_OBJECT

public:
    explicit PulsingStatusText(const QString& text, ColorRole color = ColorRole::text,
                               QWidget* parent = nullptr);

private:
    Animation m_pulse;
};

} // namespace varno
