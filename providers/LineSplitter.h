#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace varno {

/// Cuts a stream of bytes into lines, however the bytes are cut themselves. A line ends with LF, CR
/// LF or CR. A byte-order mark at the very start is dropped, and so is a line longer than
/// `longestLine`.
class LineSplitter {
public:
    /// Far above the 48 KB seen in real replies.
    static constexpr std::size_t longestLine = 8UL * 1024 * 1024;

    /// Receives a line without its end; the text is good for the duration of the call. False stops.
    using LineHandler = std::function<bool(std::string_view line)>;

    /// Returns false, and is of no more use, when `onLine` did.
    bool feed(std::string_view bytes, const LineHandler& onLine);

    /// Hands over the last line, if it had no end.
    void finish(const LineHandler& onLine);

private:
    void keep(std::string_view part);
    bool complete(std::string_view end, const LineHandler& onLine);

    std::string m_line; ///< the beginning of a line whose end has not come yet
    bool m_tooLong = false;
    bool m_skipLineFeed = false; ///< the second half of a CR LF
    bool m_firstLine = true;
};

} // namespace varno
