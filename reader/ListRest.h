#pragma once

#include "kit/ThemedText.h"

namespace varno {

/// The line below a list that tells how many entries are not shown.
class ListRest final : public ThemedText {
    Q_OBJECT

public:
    explicit ListRest(QWidget* parent = nullptr);

    /// Sets the number of entries that are not shown; the line is hidden where it is 0.
    void setCount(qsizetype count);
};

} // namespace varno
