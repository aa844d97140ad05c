#include "app/RecentSearches.h"

namespace varno {

RecentSearches::RecentSearches(QWidget* parent)
    : SearchList(tr("RECENT"), tr("Recent searches"), parent)
    , m_clear(tr("Clear"), {.text = {.size = 11, .role = ColorRole::accent}})
{
    addToHeading(m_clear);
    m_clear.setFocusPolicy(Qt::NoFocus);
    connect(&m_clear, &PlainButton::clicked, this, &RecentSearches::clear);
}

} // namespace varno
