#include "kit/InputLimit.h"

#include "kit/TextCuts.h"

#include <algorithm>

namespace varno {

InputLimit::InputLimit(qsizetype mostCost, QObject* parent)
    : QValidator(parent)
    , m_mostCost(mostCost)
{
}

QValidator::State InputLimit::validate(QString& input, int& position) const
{
    input.truncate(lengthWithin(input, m_mostCost));
    position = std::min(position, static_cast<int>(input.size()));
    return Acceptable;
}

} // namespace varno
