#include "providers/LineSplitter.h"

#include <utility>

namespace varno {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

} // namespace

bool LineSplitter::feed(std::string_view bytes, const LineHandler& onLine)
{
    if (bytes.empty())
        return true;
    if (std::exchange(m_skipLineFeed, false) && bytes.front() == '\n')
        bytes.remove_prefix(1);

    std::size_t end = 0;
    while ((end = bytes.find_first_of("\r\n")) != std::string_view::npos) {
        const bool carriageReturn = bytes[end] == '\r';
        const std::string_view line = bytes.substr(0, end);
        bytes.remove_prefix(end + 1);
        if (carriageReturn && bytes.empty())
            m_skipLineFeed = true;
        else if (carriageReturn && bytes.front() == '\n')
            bytes.remove_prefix(1);
        if (!complete(line, onLine))
            return false;
    }
    keep(bytes);
    return true;
}

void LineSplitter::finish(const LineHandler& onLine)
{
    if (!m_line.empty())
        complete({}, onLine);
}

void LineSplitter::keep(std::string_view part)
{
    if (m_tooLong || m_line.size() + part.size() > longestLine) {
        m_tooLong = true;
        std::string().swap(m_line);
    } else {
        m_line += part;
    }
}

bool LineSplitter::complete(std::string_view end, const LineHandler& onLine)
{
    // A line that came in one part is handed over where it lies.
    const bool whole = m_line.empty() && !m_tooLong && end.size() <= longestLine;
    if (!whole)
        keep(end);
    std::string_view line = whole ? end : std::string_view(m_line);
    if (std::exchange(m_firstLine, false) && line.starts_with(byteOrderMark))
        line.remove_prefix(byteOrderMark.size());
    const bool wanted = std::exchange(m_tooLong, false) || onLine(line);
    m_line.clear();
    return wanted;
}

} // namespace varno
