#include "app/RecentSearches.h"

#include "app/RowButton.h"
#include "app/SearchBox.h"
#include "kit/Layout.h"
#include "kit/Rule.h"
#include "kit/SymbolView.h"

#include <utility>

namespace varno {
namespace {

class RecentSearchRow final : public RowButton {
public:
    explicit RecentSearchRow(const QString& search)
        : RowButton(search)
        , m_clock(Symbol::clock, {.size = 11, .opacity = 0.35})
        , m_search(search, {.size = 13, .limit = lineLimit}, Overflow::elide)
        , m_arrow(Symbol::arrowUpLeft, {.size = 10, .opacity = 0.25})
    {
        setContent(row({.spacing = 8, .horizontal = 10, .vertical = 7}, {
                                                                            m_clock,
                                                                            grow(m_search),
                                                                            m_arrow,
                                                                        }));
        setFocusPolicy(Qt::NoFocus);
    }

private:
    SymbolView m_clock;
    ThemedText m_search;
    SymbolView m_arrow;
};

} // namespace

RecentSearches::RecentSearches(QWidget* parent)
    : QWidget(parent)
    , m_title(tr("RECENT"), {.size = 9, .tracking = 2, .opacity = 0.4})
    , m_clear(tr("Clear"), {.text = {.size = 11, .role = ColorRole::accent}})
{
    setLayout(column({}, {
                             row({}, {m_title, stretch(), m_clear}),
                             gap(6),
                             m_rows,
                         }));
    m_rows.setLayout(column({}, {}));
    m_clear.setFocusPolicy(Qt::NoFocus);
    connect(&m_clear, &PlainButton::clicked, this, &RecentSearches::clear);
}

void RecentSearches::setSearches(const QStringList& searches)
{
    if (std::exchange(m_searches, searches.first(std::min(searches.size(), mostRecentSearches))) ==
        m_searches)
        return;
    // Later: one of them may be telling of its being pressed.
    for (QWidget* old : m_rows.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        old->hide();
        old->deleteLater();
        m_rows.layout()->removeWidget(old);
    }
    for (const QString& search : m_searches) {
        auto* button = new RecentSearchRow(search);
        m_rows.layout()->addWidget(button);
        m_rows.layout()->addWidget(
            new Rule(Qt::Horizontal, 0.5, {.role = ColorRole::border, .opacity = 0.4}));
        connect(button, &RowButton::clicked, this,
                [this, search] { Q_EMIT searchPressed(search); });
    }
}

QSize RecentSearches::sizeHint() const
{
    return {SearchBox::mostWidth, layout()->sizeHint().height()};
}

} // namespace varno
