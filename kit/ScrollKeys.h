#pragma once

#include <QAbstractSlider>

#include <optional>

class QKeyEvent;

namespace varno {

/// The scroll action of a key; nothing for a key that does not scroll.
[[nodiscard]] std::optional<QAbstractSlider::SliderAction> scrollAction(const QKeyEvent& event);

} // namespace varno
