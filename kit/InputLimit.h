#pragma once

#include "kit/TextLimits.h"

#include <QValidator>

namespace varno {

/// Keeps what a field holds to what it can lay out at every letter that is typed; the rest of a
/// longer text is dropped.
class InputLimit final : public QValidator {
public:
    /// `mostCost` is a layout cost.
    explicit InputLimit(qsizetype mostCost, QObject* parent = nullptr);

    [[nodiscard]] State validate(QString& input, int& position) const override;

private:
    qsizetype m_mostCost;
};

} // namespace varno
