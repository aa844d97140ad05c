#pragma once

#include "kit/PlainButton.h"
#include "kit/ThemedText.h"

namespace varno {

/// A list of the latest searches; pressing one searches for it again.
class RecentSearches final : public QWidget {
    Q_OBJECT

public:
    explicit RecentSearches(QWidget* parent = nullptr);

    /// Shows the first eight of them.
    void setSearches(const QStringList& searches);

    /// As wide as the frame of the search box.
    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void searchPressed(const QString& search);
    void clear();

private:
    QStringList m_searches; ///< those on show
    ThemedText m_title;
    PlainButton m_clear;
    QWidget m_rows;
};

} // namespace varno
