#pragma once

#include "kit/PlainButton.h"

namespace varno {

/// The offer to make an article of a short answer.
class FullEntryButton final : public PlainButton {
    Q_OBJECT

public:
    explicit FullEntryButton(QWidget* parent = nullptr);
};

} // namespace varno
