#include "reader/TOCSidebarView.h"

#include "kit/Accessibility.h"
#include "kit/Layout.h"
#include "kit/ScriptDirection.h"
#include "kit/TextCuts.h"
#include "reader/TOCEntry.h"
#include "reader/TabOrder.h"

#include <QKeyEvent>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace varno {
TOCSidebarView::TOCSidebarView(QWidget* parent)
    : Surface(BottomEdge::plain, parent)
    , m_heading(tr("CONTENTS"), {.size = 9,
                                 .weight = QFont::DemiBold,
                                 .design = FontDesign::serif,
                                 .tracking = 2,
                                 .opacity = 0.5})
{
    setLayout(column({.vertical = 16}, {row({.horizontal = 16}, {grow(m_heading)}), gap(10),
                                        m_placeholders, grow(m_scroll)}));
    m_list.setLayout(&m_column);
    m_column.setContentsMargins({});
    m_column.setSpacing(0);
    LayoutItem(row({.horizontal = 16}, {gap(TOCEntry::numberWidth), grow(m_rest)})).addTo(m_column);
    m_column.addStretch();
    m_scroll.setContent(m_list);
    m_scroll.setAccessibleName(tr("Contents"));
    m_scroll.installEventFilter(this);
    setAccessibleName(tr("Contents"));
    m_heading.setAccessibleName(accessibleName());
    setAccessibleRole(m_heading, QAccessible::Heading, 2);
    m_list.setAccessibleName(accessibleName());
    setAccessibleRole(m_list, QAccessible::List);
    setLoading(false);
}

void TOCSidebarView::setSections(const QStringList& sections)
{
    const qsizetype count = shownCount(sections, contentsLimit, contentsEntryLimit);
    m_rest.setCount(sections.size() - count);
    if (std::exchange(m_sections, sections.first(count)) == m_sections)
        return;
    for (TOCEntry* old : std::as_const(m_entries)) {
        old->hide();
        old->deleteLater(); // it may be calling us
    }
    m_entries.clear();
    setWrittenDirection(*this, m_sections.join(u' '));
    for (const QString& section : std::as_const(m_sections))
        m_entries.append(addEntry(int(m_entries.size()) + 1, section));
    setTabOrderAfter(m_list, {m_entries.begin(), m_entries.end()});
    setTabStop(0);
}

TOCEntry* TOCSidebarView::addEntry(int number, const QString& section)
{
    auto* entry = new TOCEntry(number, section);
    m_column.insertWidget(number - 1, entry);
    entry->installEventFilter(this);
    connect(entry, &TOCEntry::clicked, this, [this, section] { Q_EMIT sectionPressed(section); });
    return entry;
}

void TOCSidebarView::setLoading(bool loading)
{
    if (loading && m_placeholders.isHidden())
        m_placeholders.start();
    m_placeholders.setVisible(loading);
    m_scroll.setVisible(!loading);
}

void TOCSidebarView::setActiveSection(const std::optional<QString>& section)
{
    for (TOCEntry* entry : std::as_const(m_entries))
        entry->setActive(entry->section() == section);
    if (std::exchange(m_activeSection, section) != section)
        QTimer::singleShot(0, this, &TOCSidebarView::showActive); // when the entries are laid out
}

void TOCSidebarView::showActive()
{
    const auto active = std::ranges::find_if(m_entries, &TOCEntry::isActive);
    if (active != m_entries.end() && isVisible())
        m_scroll.showPart(**active, (*active)->rect());
}

void TOCSidebarView::showEvent(QShowEvent* event)
{
    Surface::showEvent(event);
    QTimer::singleShot(0, this, &TOCSidebarView::showActive);
}

void TOCSidebarView::setTabStop(qsizetype index)
{
    for (qsizetype i = 0; i < m_entries.size(); ++i)
        m_entries.at(i)->setFocusPolicy(i == index ? Qt::TabFocus : Qt::NoFocus);
}

bool TOCSidebarView::eventFilter(QObject* watched, QEvent* event)
{
    const auto* key = dynamic_cast<QKeyEvent*>(event);
    if (!key || event->type() != QEvent::KeyPress)
        return false;
    if (watched == &m_scroll) {
        event->ignore(); // what the list does not want scrolls the page
        return true;
    }
    const qsizetype last = m_entries.size() - 1;
    const qsizetype current = m_entries.indexOf(watched);
    if ((key->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    switch (key->key()) {
    case Qt::Key_Up:
        focusEntry(std::max<qsizetype>(current - 1, 0));
        return true;
    case Qt::Key_Down:
        focusEntry(std::min(current + 1, last));
        return true;
    default:
        return false;
    }
}

void TOCSidebarView::focusEntry(qsizetype index)
{
    setTabStop(index);
    m_entries.at(index)->setFocus(Qt::TabFocusReason);
}

} // namespace varno
