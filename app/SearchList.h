#pragma once

#include "kit/PlainButton.h"
#include "kit/ThemedText.h"

namespace varno {

/// A headed list of searches below the search field; pressing one asks for it. The keyboard stays
/// with the field, from where arrows walk the rows.
class SearchList final : public QWidget {
    Q_OBJECT

public:
    enum class Clearing { offered, notOffered };

    /// `name` is the accessible name.
    SearchList(const QString& heading, const QString& name, Clearing clearing,
               QWidget* parent = nullptr);

    /// Shows the first eight of them; none is current.
    void setSearches(const QStringList& searches);
    [[nodiscard]] bool isEmpty() const { return m_searches.isEmpty(); }

    /// Makes another row the current one: the next or, with -1, the one before, as far as there is
    /// one. Before the first row none is current.
    void step(int by);
    void dropCurrent();
    /// Null when none is current.
    [[nodiscard]] QWidget* currentRow() const;
    /// Presses the current row.
    void pressCurrent();

    /// As wide as the frame of the search box.
    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void searchPressed(const QString& search);
    void clear();

private:
    class Row;

    void addRow();
    void setCurrent(qsizetype index);

    QStringList m_searches; ///< those on show
    QList<Row*> m_lines;    ///< the first of them show the searches
    qsizetype m_current = -1;
    ThemedText m_heading;
    PlainButton m_clear; ///< keeps its room: all lists stand alike
    QWidget m_rows;
};

} // namespace varno
