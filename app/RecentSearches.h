#pragma once

#include "app/SearchList.h"
#include "kit/PlainButton.h"

namespace varno {

/// The latest searches, with a button that clears them.
class RecentSearches final : public SearchList {
    Q_OBJECT

public:
    explicit RecentSearches(QWidget* parent = nullptr);

Q_SIGNALS:
    void clear();

private:
    PlainButton m_clear;
};

} // namespace varno
