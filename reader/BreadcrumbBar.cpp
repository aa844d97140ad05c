#include "reader/BreadcrumbBar.h"

#include "kit/Layout.h"

namespace varno {
namespace {

const ButtonStyle searchStyle{
    .text = {.size = 12, .opacity = 0.7},
    .symbol = {.size = 12, .opacity = 0.7},
    .spacing = 5,
    .horizontal = 6,
    .vertical = 3,
};
const ButtonStyle iconStyle{
    .symbol = {.size = 13, .opacity = 0.6},
    .frame = {24, 24},
};

} // namespace

BreadcrumbBar::BreadcrumbBar(QWidget* parent)
    : Surface(BottomEdge::ruled, parent)
    , m_search(Symbol::house, tr("Search"), searchStyle)
    , m_find(Symbol::magnifyingGlass, iconStyle)
    , m_reload(Symbol::arrowClockwise, iconStyle)
    , m_settings(Symbol::gearshape, iconStyle)
{
    setLayout(row({.horizontal = 20, .vertical = 10},
                  {
                      m_search,
                      grow(m_trail),
                      gap(12),
                      row({.spacing = 4}, {m_find, m_reload, m_settings}),
                  }));
    setAccessibleName(tr("Entry bar"));
    m_search.setToolTip(tr("New search (⌘K)"));
    m_find.setToolTip(tr("Find in entry (⌘F)"));
    m_reload.setToolTip(tr("Reload entry"));
    m_settings.setToolTip(tr("Settings"));

    connect(&m_search, &PlainButton::clicked, this, &BreadcrumbBar::newSearch);
    connect(&m_trail, &BreadcrumbTrail::crumbPressed, this, &BreadcrumbBar::crumbPressed);
    connect(&m_find, &PlainButton::clicked, this, &BreadcrumbBar::find);
    connect(&m_reload, &PlainButton::clicked, this, &BreadcrumbBar::reload);
    connect(&m_settings, &PlainButton::clicked, this, &BreadcrumbBar::settings);
}

} // namespace varno
