#include "reader/BreadcrumbTrail.h"

#include "kit/FairShare.h"
#include "kit/PlainButton.h"
#include "kit/SymbolView.h"
#include "kit/ThemedText.h"
#include "reader/TabOrder.h"

#include <QStyle>

#include <algorithm>

namespace varno {
namespace {

constexpr int trailHeight = 22;
constexpr int spacing = 6;

const SymbolStyle chevronStyle{.size = 9, .weight = QFont::DemiBold, .opacity = 0.55};
const TextStyle currentStyle{.size = 12, .weight = QFont::Medium, .limit = lineLimit};
const ButtonStyle crumbStyle{
    .text = {.size = 12, .opacity = 0.7, .limit = lineLimit},
    .overflow = Overflow::elide,
};

} // namespace

QList<int> sharedWidths(QList<int> widths, int available)
{
    const double share = fairShare(QList<double>(widths.begin(), widths.end()), available);
    for (int& width : widths)
        width = static_cast<int>(std::min<double>(width, share));
    return widths;
}

BreadcrumbTrail::BreadcrumbTrail(QWidget* parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(tr("Breadcrumbs"));
}

void BreadcrumbTrail::setCrumbs(const QList<Breadcrumb>& crumbs)
{
    if (crumbs == m_crumbs)
        return;
    m_crumbs = crumbs;
    clear();
    for (qsizetype i = 0; i < crumbs.size(); ++i)
        addCrumb(crumbs.at(i), i == crumbs.size() - 1);
    setTabOrderAfter(*this, m_titles);
    layOut();
}

void BreadcrumbTrail::clear()
{
    for (QWidget* old : m_chevrons + m_titles) {
        old->hide();
        old->deleteLater(); // it may be calling us
    }
    m_chevrons.clear();
    m_titles.clear();
}

void BreadcrumbTrail::addCrumb(const Breadcrumb& crumb, bool isCurrent)
{
    m_chevrons.append(new SymbolView(Symbol::chevronRight, chevronStyle, this));
    if (isCurrent) {
        auto* current = new ThemedText(crumb.title, currentStyle, Overflow::elide, this);
        current->setAccessibleDescription(tr("The page on show"));
        m_titles.append(current);
    } else {
        auto* button = new PlainButton(crumb.title, crumbStyle, this);
        connect(button, &PlainButton::clicked, this,
                [this, id = crumb.pageId] { Q_EMIT crumbPressed(id); });
        m_titles.append(button);
    }
    m_chevrons.constLast()->show();
    m_titles.constLast()->show();
}

void BreadcrumbTrail::layOut()
{
    const int chevron = int(chevronStyle.size);
    QList<int> widths;
    for (const QWidget* title : std::as_const(m_titles))
        widths.append(title->sizeHint().width());
    widths = sharedWidths(widths, width() - int(widths.size()) * (chevron + 2 * spacing));

    int left = 0;
    const auto place = [&](QWidget* widget, int itemWidth, int itemHeight) {
        const QRect item(left, (height() - itemHeight) / 2, itemWidth, itemHeight);
        widget->setGeometry(QStyle::visualRect(layoutDirection(), rect(), item));
        left += itemWidth + spacing;
    };
    for (qsizetype i = 0; i < m_titles.size(); ++i) {
        place(m_chevrons.at(i), chevron, chevron);
        place(m_titles.at(i), widths.at(i), m_titles.at(i)->sizeHint().height());
    }
}

QSize BreadcrumbTrail::sizeHint() const
{
    return {0, trailHeight};
}

QSize BreadcrumbTrail::minimumSizeHint() const
{
    return {0, trailHeight};
}

void BreadcrumbTrail::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    layOut();
}

} // namespace varno
