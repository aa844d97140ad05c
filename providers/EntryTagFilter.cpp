#include "providers/EntryTagFilter.h"

#include <algorithm>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

constexpr auto openingTag = "<entry>"_L1;

} // namespace

std::optional<QString> EntryTagFilter::filter(const QString& text)
{
    if (m_tagSeen)
        return text;
    // Only the new text, and a tag that it may complete, has not been searched before.
    const qsizetype start = std::max<qsizetype>(0, m_held.size() - openingTag.size() + 1);
    m_held += text;
    const qsizetype tag = m_held.indexOf(openingTag, start);
    if (tag < 0)
        return std::nullopt;
    m_tagSeen = true;
    const QString entry = m_held.sliced(tag + openingTag.size());
    m_held.clear();
    return entry.isEmpty() ? std::nullopt : std::optional(entry);
}

std::optional<QString> EntryTagFilter::rest() const
{
    return m_tagSeen || m_held.isEmpty() ? std::nullopt : std::optional(m_held);
}

} // namespace varno
