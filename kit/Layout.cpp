#include "kit/Layout.h"

#include <QWidget>

#include <utility>

namespace varno {
namespace {

QBoxLayout* filled(QBoxLayout::Direction direction, const Spacing& spacing,
                   std::initializer_list<LayoutItem> items)
{
    auto* layout = new QBoxLayout(direction);
    layout->setContentsMargins(spacing.horizontal, spacing.vertical, spacing.horizontal,
                               spacing.vertical);
    layout->setSpacing(spacing.spacing);
    for (const LayoutItem& item : items)
        item.addTo(*layout);
    return layout;
}

} // namespace

LayoutItem::LayoutItem(QWidget& widget)
    : m_add([&widget](QBoxLayout& layout) { layout.addWidget(&widget); })
{
}

LayoutItem::LayoutItem(QLayout* nested)
    : m_add([nested](QBoxLayout& layout) { layout.addLayout(nested); })
{
}

LayoutItem::LayoutItem(std::function<void(QBoxLayout&)> add)
    : m_add(std::move(add))
{
}

LayoutItem grow(QWidget& widget)
{
    return LayoutItem([&widget](QBoxLayout& layout) { layout.addWidget(&widget, 1); });
}

LayoutItem aligned(QWidget& widget, Qt::Alignment alignment)
{
    return LayoutItem(
        [&widget, alignment](QBoxLayout& layout) { layout.addWidget(&widget, 0, alignment); });
}

LayoutItem gap(int points)
{
    return LayoutItem([points](QBoxLayout& layout) { layout.addSpacing(points); });
}

LayoutItem stretch()
{
    return LayoutItem([](QBoxLayout& layout) { layout.addStretch(1); });
}

QBoxLayout* row(const Spacing& spacing, std::initializer_list<LayoutItem> items)
{
    return filled(QBoxLayout::LeftToRight, spacing, items);
}

QBoxLayout* column(const Spacing& spacing, std::initializer_list<LayoutItem> items)
{
    return filled(QBoxLayout::TopToBottom, spacing, items);
}

} // namespace varno
