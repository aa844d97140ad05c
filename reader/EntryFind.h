#pragma once

#include "reader/text/FindMatches.h"

#include <QObject>

namespace varno {

class FindBar;
class ReadingColumn;

/// Finding in the page on show: knows the find text, its matches and the current one, and has the
/// bar count them and the column show them.
class EntryFind final : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    EntryFind(FindBar& bar, ReadingColumn& column, QObject* parent = nullptr);

    /// Looks through another text of the page.
    void pageReplaced(QStringView text);
    /// Looks at more text at the end of the page.
    void pageGrew(QStringView piece);
    /// Looks for something else, in `page`.
    void setFindText(const QString& text, QStringView page);
    /// Looks for nothing any more.
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
