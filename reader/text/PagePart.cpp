#include "reader/text/PagePart.h"

#include "reader/text/TextSurface.h"

namespace varno {
namespace {

/// Whether the name of a part is its text.
bool isNamedByText(QAccessible::Role role)
{
    switch (role) {
    case QAccessible::Heading:
    case QAccessible::ListItem:
    case QAccessible::Link:
    case QAccessible::Cell:
    case QAccessible::ColumnHeader:
        return true;
    default:
        return false;
    }
}

/// The text of a list and of a table is in their parts.
bool hasText(QAccessible::Role role)
{
    return role != QAccessible::List && role != QAccessible::Table &&
           role != QAccessible::Separator;
}

} // namespace

PageParts::PageParts(QAccessibleInterface& owner)
    : m_owner(owner)
{
}

PageParts::~PageParts()
{
    for (PagePart* part : m_parts)
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(part));
}

PagePart* PageParts::at(int index) const
{
    return index < 0 || index >= count() ? nullptr : m_parts[static_cast<std::size_t>(index)];
}

int PageParts::indexOf(const QAccessibleInterface* part) const
{
    const auto* wanted = dynamic_cast<const PagePart*>(part);
    if (!wanted)
        return -1;
    const auto found =
        std::ranges::lower_bound(m_parts, wanted->start().position, {},
                                 [](const PagePart* p) { return p->start().position; });
    return found != m_parts.end() && *found == wanted ? static_cast<int>(found - m_parts.begin())
                                                      : -1;
}

PagePart* PageParts::under(const QPoint& point) const
{
    const auto found = std::ranges::find_if(
        m_parts, [&point](const PagePart* part) { return part->rect().contains(point); });
    return found == m_parts.end() ? nullptr : *found;
}

void PageParts::keepUpTo(qsizetype position)
{
    const auto end = std::ranges::lower_bound(
        m_parts, position, {}, [](const PagePart* part) { return part->start().position; });
    m_kept = static_cast<int>(end - m_parts.begin());
    if (PagePart* last = open()) {
        last->parts().keepUpTo(position);
        last->cutAt(position - 1); // what separates the rows belongs to none
    }
}

PagePart& PageParts::begin(TextSurface& surface, const PartStart& start)
{
    if (PagePart* before = open())
        before->parts().close();
    PagePart* same = at(m_kept);
    if (same && same->start() == start) {
        same->parts().keepUpTo(start.position);
        ++m_kept;
        return *same;
    }
    removeFrom(m_kept);
    PagePart* part = makePart(m_owner, surface, start);
    m_parts.push_back(part);
    ++m_kept;
    if (m_tellsChanges)
        part->parts().tellChanges();
    tell(part, QAccessible::ObjectCreated);
    return *part;
}

void PageParts::close()
{
    removeFrom(m_kept);
    if (PagePart* last = open())
        last->parts().close();
}

void PageParts::tellChanges()
{
    m_tellsChanges = true;
    for (PagePart* part : m_parts)
        part->parts().tellChanges();
}

void PageParts::tell(PagePart* part, QAccessible::Event what) const
{
    if (!m_tellsChanges || !QAccessible::isActive())
        return;
    QAccessibleEvent event(part, what);
    QAccessible::updateAccessibility(&event);
}

void PageParts::removeFrom(int index)
{
    while (count() > index) {
        PagePart* part = m_parts.back();
        tell(part, QAccessible::ObjectDestroyed);
        m_parts.pop_back();
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(part));
    }
}

PagePart::PagePart(QAccessibleInterface& parent, TextSurface& surface, const PartStart& start)
    : AccessibleText(surface)
    , AccessibleLevel(start.level)
    , m_parent(parent)
    , m_start(start)
    , m_end(start.position)
    , m_parts(*this)
{
}

TextRange PagePart::range() const
{
    return {.begin = m_start.position, .end = m_end};
}

QWindow* PagePart::window() const
{
    return m_parent.window();
}

QAccessibleInterface* PagePart::child(int index) const
{
    return m_parts.at(index);
}

int PagePart::indexOfChild(const QAccessibleInterface* child) const
{
    return m_parts.indexOf(child);
}

QAccessibleInterface* PagePart::childAt(int x, int y) const
{
    return m_parts.under({x, y});
}

QString PagePart::text(QAccessible::Text what) const
{
    const bool isItem = role() == QAccessible::ListItem;
    if (what == QAccessible::Name && isNamedByText(role()))
        return (isItem ? m_note + u' ' : QString()) + text(0, characterCount());
    if (what == QAccessible::Description && !isItem)
        return m_note.isEmpty() ? levelDescription() : m_note;
    return {};
}

QRect PagePart::rect() const
{
    return rectOf(range());
}

QAccessible::State PagePart::state() const
{
    QAccessible::State state;
    state.readOnly = true;
    state.selectableText = true;
    state.multiLine = true;
    state.invisible = !surface().isVisible();
    const QRect seen = surface().visibleRegion().boundingRect();
    state.offscreen = !rect().intersects({surface().mapToGlobal(seen.topLeft()), seen.size()});
    return state;
}

void* PagePart::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TextInterface && hasText(role()))
        return static_cast<QAccessibleTextInterface*>(this);
    return levelInterface(type);
}

} // namespace varno
