#pragma once

#include <QList>
#include <QString>

namespace varno {

/// The index of the block of each match of `needle`, in reading order. Blocks stand between empty
/// lines; a heading counts as one with the lines right below it. Case does not matter, marks of the
/// text's own syntax count as text.
[[nodiscard]] QList<int> findMatchBlocks(QStringView text, const QString& needle);

/// The same list, for a page that grows at its end: a piece costs a new look at the last block and
/// no more. Keeps a copy of that block, and nothing else of the page.
class FindMatches {
public:
    /// Looks through the whole page.
    void reset(QStringView text, const QString& needle);
    /// Takes more text at the end of the page.
    void append(QStringView piece);

    [[nodiscard]] const QList<int>& blocks() const { return m_blocks; }

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
