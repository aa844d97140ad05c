#pragma once

#include "kit/ThemedText.h"

namespace varno {

/// What stands below a list that is not shown to its end.
class ListRest final : public ThemedText {
    Q_OBJECT

public:
    explicit ListRest(QWidget* parent = nullptr);

    /// Of the entries that are not shown; nothing is to be seen where that is 0.
    void setCount(qsizetype count);
};

} // namespace varno
