#pragma once

#include "kit/PlainButton.h"

namespace varno {

/// The button that makes an article of a short answer.
class FullEntryButton final : public PlainButton {
    Q_OBJECT

public:
    explicit FullEntryButton(QWidget* parent = nullptr);
};

} // namespace varno
