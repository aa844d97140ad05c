#pragma once

#include <QUuid>
#include <QWidget>

namespace varno {

/// A page of the trail to the page on show.
struct Breadcrumb {
    QUuid pageId;
    QString title;

    bool operator==(const Breadcrumb&) const = default;
};

/// The titles of the trail to the page on show, each behind a chevron. All but the last, the page
/// itself, can be pressed. Where they do not fit, the longest are elided first.
class BreadcrumbTrail final : public QWidget {
    Q_OBJECT

public:
    explicit BreadcrumbTrail(QWidget* parent = nullptr);

    void setCrumbs(const QList<Breadcrumb>& crumbs);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    void crumbPressed(const QUuid& pageId);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void clear();
    void addCrumb(const Breadcrumb& crumb, bool isCurrent);
    void layOut();

    QList<Breadcrumb> m_crumbs;
    QList<QWidget*> m_chevrons;
    QList<QWidget*> m_titles;
};

/// The widths of items that share the available width: where it is too small, the widest are cut to
/// a common width.
[[nodiscard]] QList<int> sharedWidths(QList<int> widths, int available);

} // namespace varno
