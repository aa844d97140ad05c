#include "app/SearchList.h"

#include "app/RowButton.h"
#include "app/SearchBox.h"
#include "kit/Accessibility.h"
#include "kit/Layout.h"
#include "kit/RoundedShape.h"
#include "kit/Rule.h"
#include "kit/SymbolView.h"
#include "kit/TextCuts.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace varno {

class SearchList::Row final : public RowButton {
public:
    Row()
        : m_clock(Symbol::clock, {.size = 11, .opacity = 0.35})
        , m_search({}, {.size = 13, .limit = lineLimit}, Overflow::elide)
        , m_arrow(Symbol::arrowUpLeft, {.size = 10, .opacity = 0.25})
    {
        setContent(row({.spacing = 8, .horizontal = 10, .vertical = 7}, {
                                                                            m_clock,
                                                                            grow(m_search),
                                                                            m_arrow,
                                                                        }));
        setFocusPolicy(Qt::NoFocus);
        setAccessibleRole(*this, QAccessible::ListItem);
        setAccessiblyCurrent(*this, false);
    }

    void setSearch(const QString& search)
    {
        m_search.setText(search);
        setAccessibleName(shortened(search, toolTipLimit));
    }

    void setCurrent(bool current)
    {
        m_isCurrent = current;
        setAccessiblyCurrent(*this, current);
        update();
    }

    Rule line{Qt::Horizontal, 0.5, {.role = ColorRole::border, .opacity = 0.4}};

protected:
    void paintEvent(QPaintEvent* event) override
    {
        if (!m_isCurrent)
            return RowButton::paintEvent(event);
        QPainter painter(this);
        fillRounded(painter, rect(), 4, themeColor(palette(), ColorRole::accent, 0.15));
    }

private:
    SymbolView m_clock;
    ThemedText m_search;
    SymbolView m_arrow;
    bool m_isCurrent = false;
};

SearchList::SearchList(const QString& heading, const QString& name, Clearing clearing,
                       QWidget* parent)
    : QWidget(parent)
    , m_heading(heading, {.size = 9, .tracking = 2, .opacity = 0.4})
    , m_clear(tr("Clear"), {.text = {.size = 11, .role = ColorRole::accent}})
{
    setLayout(column({}, {
                             row({}, {m_heading, stretch(), m_clear}),
                             gap(6),
                             m_rows,
                         }));
    m_rows.setLayout(column({}, {}));
    m_rows.setAccessibleName(name);
    m_heading.setAccessibleName(name);
    setAccessibleRole(m_rows, QAccessible::List);
    QSizePolicy policy = m_clear.sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_clear.setSizePolicy(policy);
    m_clear.setFocusPolicy(Qt::NoFocus);
    m_clear.setVisible(clearing == Clearing::offered);
    connect(&m_clear, &PlainButton::clicked, this, &SearchList::clear);
}

void SearchList::setSearches(const QStringList& searches)
{
    dropCurrent();
    if (std::exchange(m_searches, searches.first(std::min(searches.size(), mostSearchesListed))) ==
        m_searches)
        return;
    while (m_lines.size() < m_searches.size())
        addRow();
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
        const bool isUsed = i < m_searches.size();
        if (isUsed)
            m_lines[i]->setSearch(m_searches[i]);
        m_lines[i]->setVisible(isUsed);
        m_lines[i]->line.setVisible(isUsed);
    }
    m_rows.updateGeometry(); // at once: the place of the list asks for its height
}

void SearchList::addRow()
{
    auto* added = new Row;
    m_rows.layout()->addWidget(added);
    m_rows.layout()->addWidget(&added->line);
    connect(added, &RowButton::clicked, this, [this, index = m_lines.size()] {
        const QString search = m_searches.value(index);
        Q_EMIT searchPressed(search);
    });
    m_lines.append(added);
}

void SearchList::step(int by)
{
    setCurrent(std::clamp<qsizetype>(m_current + by, -1, m_searches.size() - 1));
}

void SearchList::dropCurrent()
{
    setCurrent(-1);
}

void SearchList::setCurrent(qsizetype index)
{
    if (index == m_current)
        return;
    const qsizetype before = std::exchange(m_current, index);
    for (const qsizetype changed : {before, index})
        if (changed >= 0)
            m_lines[changed]->setCurrent(changed == index);
}

QWidget* SearchList::currentRow() const
{
    return m_lines.value(m_current);
}

void SearchList::pressCurrent()
{
    m_lines[m_current]->click();
}

QSize SearchList::sizeHint() const
{
    return {SearchBox::mostWidth, layout()->sizeHint().height()};
}

} // namespace varno
