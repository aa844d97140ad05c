#include "reader/text/FindMatches.h"

#include <utility>

namespace varno {
namespace {

constexpr QStringView separator = u"\n\n";

} // namespace

FindMatches::FindMatches(QStringView page, const QString& needle)
    : m_needle(needle.toLower())
{
    append(page);
}

void FindMatches::append(QStringView piece)
{
    if (m_needle.isEmpty())
        return;
    m_blocks.resize(m_settled);
    const QString unsettled = std::exchange(m_openPiece, {}).append(piece);
    QStringView open = unsettled;
    for (qsizetype end = open.indexOf(separator); end >= 0; end = open.indexOf(separator)) {
        if (look(open.first(end)))
            ++m_nextBlock;
        open = open.sliced(end + separator.size());
    }
    m_settled = m_blocks.size();
    look(open);
    m_openPiece = open.toString();
}

bool FindMatches::look(QStringView piece)
{
    const QString block = piece.trimmed().toString().toLower();
    for (qsizetype hit = block.indexOf(m_needle); hit >= 0;
         hit = block.indexOf(m_needle, hit + m_needle.size()))
        m_blocks.append(m_nextBlock);
    return !block.isEmpty();
}

} // namespace varno
