#pragma once

#include <QUuid>
#include <QWidget>

namespace varno {

/// A page on the way to the one on show.
struct Breadcrumb {
    QUuid pageId;
    QString title;

    bool operator==(const Breadcrumb&) const = default;
};

/// The titles on the way to the page on show, a chevron before each. All but the last, the page
/// itself, can be pressed. Where room is short the longest are shortened first.
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

/// The widths of things that share a room too small for all: the widest give way, down to the width
/// of the next.
[[nodiscard]] QList<int> sharedWidths(QList<int> widths, int available);

} // namespace varno
