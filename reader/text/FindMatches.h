#pragma once

#include <QList>
#include <QString>

namespace varno {

/// The matches of a text in a page that grows at its end: a piece costs a new look at the last
/// block and no more. Keeps a copy of that block, and nothing else of the page.
///
/// Case does not matter, marks of the page's own syntax count as text.
class FindMatches {
public:
    FindMatches() = default;
    /// Looks through all of `page`.
    FindMatches(QStringView page, const QString& needle);

    /// Takes more text at the end of the page.
    void append(QStringView piece);

    /// The index of the block of each match, in reading order. Blocks stand between empty lines; a
    /// heading counts as one with the lines right below it.
    [[nodiscard]] const QList<int>& findMatchBlocks() const { return m_blocks; }

private:
    /// Counts the matches of a piece between two empty lines; false when there is nothing in it.
    bool look(QStringView piece);

    QString m_needle; ///< in lower case
    QString m_openPiece;
    QList<int> m_blocks;
    qsizetype m_settled = 0; ///< how many matches stand before the open piece
    int m_nextBlock = 0;     ///< the index of the open piece
};

} // namespace varno
