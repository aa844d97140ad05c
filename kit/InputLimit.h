#pragma once

#include "kit/TextLimits.h"

#include <QValidator>

namespace varno {

/// Limits the text of a field to what can be laid out at every keystroke; the rest of a longer text
/// is dropped.
class InputLimit final : public QValidator {
public:
    /// `mostCost`: see `layoutCost`.
    explicit InputLimit(qsizetype mostCost, QObject* parent = nullptr);

    [[nodiscard]] State validate(QString& input, int& position) const override;

private:
    qsizetype m_mostCost;
};

} // namespace varno
