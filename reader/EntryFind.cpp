#include "reader/EntryFind.h"

#include "reader/FindBar.h"
#include "reader/ReadingColumn.h"

#include <algorithm>

namespace varno {

EntryFind::EntryFind(FindBar& bar, ReadingColumn& column, QObject* parent)
    : QObject(parent)
    , m_bar(bar)
    , m_column(column)
{
    connect(&bar, &FindBar::currentMatchIndexChanged, this, &EntryFind::setCurrentMatchIndex);
}

void EntryFind::pageReplaced(QStringView text)
{
    m_matches = FindMatches(text, m_findText);
    showMatches();
}

void EntryFind::pageGrew(QStringView piece)
{
    if (m_findText.isEmpty())
        return;
    m_matches.append(piece);
    showMatches();
}

void EntryFind::setFindText(const QString& text, QStringView page)
{
    m_findText = text;
    m_currentMatchIndex = 0;
    m_matches = FindMatches(page, text);
    m_column.setHighlightText(text);
    showMatches();
    scrollToCurrent();
}

void EntryFind::setCurrentMatchIndex(int index)
{
    m_currentMatchIndex = index;
    showMatches();
    scrollToCurrent();
}

void EntryFind::reset()
{
    setFindText({}, {});
    m_bar.setFindText({});
}

void EntryFind::showMatches()
{
    const int total = int(m_matches.findMatchBlocks().size());
    // Another page may hold fewer matches than the one before.
    m_currentMatchIndex = std::clamp(m_currentMatchIndex, 0, std::max(total - 1, 0));
    m_bar.setMatches(m_currentMatchIndex, total);
}

void EntryFind::scrollToCurrent()
{
    if (m_currentMatchIndex < m_matches.findMatchBlocks().size())
        m_column.scrollToBlock(m_matches.findMatchBlocks().at(m_currentMatchIndex));
}

} // namespace varno
