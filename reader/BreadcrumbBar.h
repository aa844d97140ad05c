#pragma once

#include "kit/PlainButton.h"
#include "reader/BreadcrumbTrail.h"
#include "reader/Surface.h"

namespace varno {

/// The bar at the top: the trail from the search screen to the page on show, and buttons for the
/// page.
class BreadcrumbBar final : public Surface {
    Q_OBJECT

public:
    explicit BreadcrumbBar(QWidget* parent = nullptr);

    /// Shows the trail, whose last crumb is the page on show.
    void setCrumbs(const QList<Breadcrumb>& crumbs) { m_trail.setCrumbs(crumbs); }

Q_SIGNALS:
    void crumbPressed(const QUuid& pageId);
    void newSearch();
    void find();
    void reload();
    void settings();

private:
    PlainButton m_search;
    BreadcrumbTrail m_trail;
    PlainButton m_find;
    PlainButton m_reload;
    PlainButton m_settings;
};

} // namespace varno
