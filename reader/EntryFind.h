#pragma once

#include "reader/text/FindMatches.h"

#include <QObject>

namespace varno {

class FindBar;
class ReadingColumn;

/// Finds in the page on show: keeps the find text, its matches and the current one, and updates the
/// bar and the column.
class EntryFind final : public QObject {
    Q_OBJECT

public:
    /// `bar` and `column` outlive it.
    EntryFind(FindBar& bar, ReadingColumn& column, QObject* parent = nullptr);

    /// Finds the matches in another text of the page.
    void pageReplaced(QStringView text);
    /// Finds the matches in more text at the end of the page.
    void pageGrew(QStringView piece);
    /// Finds the matches of another find text in `page`.
    void setFindText(const QString& text, QStringView page);
    /// Clears the find text.
    void reset();

private:
    void setCurrentMatchIndex(int index);
    void showMatches();
    void scrollToCurrent();

    FindBar& m_bar;
    ReadingColumn& m_column;
    QString m_findText;
    int m_currentMatchIndex = 0;
    FindMatches m_matches;
};

} // namespace varno
