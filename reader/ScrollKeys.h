#pragma once

#include <QAbstractSlider>

#include <optional>

class QKeyEvent;

namespace varno {

/// What a key does to a page that is being read; nothing for a key that does not scroll.
[[nodiscard]] std::optional<QAbstractSlider::SliderAction> scrollAction(const QKeyEvent& event);

} // namespace varno
