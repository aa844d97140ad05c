#include "core/JsonReader.h"
#include "fuzz/Check.h"
#include "providers/EntryTagFilter.h"
#include "providers/LineSplitter.h"
#include "providers/WireFormat.h"

#include <QStringList>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

// Event streams of any bytes, received in pieces. A byte 0xFF, which no UTF-8 text has, is not part
// of the stream: it marks where the fuzzer wants it cut.

using namespace varno;

namespace {

using namespace Qt::StringLiterals;

using Decoder = std::optional<QString> (*)(json::Parser&, std::string_view payload);
using Pieces = std::vector<std::string_view>;

/// The entry as one service's client makes it of the lines.
class Entry {
public:
    explicit Entry(Decoder decode)
        : m_decode(decode)
    {
    }

    void read(std::string_view payload)
    {
        const auto text = m_decode(m_parser, payload);
        if (!text)
            return;
        m_answer += *text;
        if (const auto piece = m_filter.filter(*text))
            m_pieces.append(*piece);
    }

    QStringList finish()
    {
        if (const auto rest = m_filter.rest())
            m_pieces.append(*rest);
        const QString tag = u"<entry>"_s;
        const qsizetype start = m_answer.indexOf(tag);
        const QString entry = start < 0 ? m_answer : m_answer.sliced(start + tag.size());
        fuzz::check(m_pieces.join(QString()) == entry, "the entry is what follows the first tag");
        return m_pieces;
    }

private:
    Decoder m_decode;
    json::Parser m_parser;
    EntryTagFilter m_filter;
    QString m_answer;
    QStringList m_pieces;
};

struct Reading {
    std::vector<std::string> lines;
    QStringList claude;
    QStringList gemini;

    bool operator==(const Reading&) const = default;
};

Reading read(const Pieces& pieces)
{
    Reading reading;
    Entry claude(claudeEventText);
    Entry gemini(geminiEventText);
    const auto onLine = [&](std::string_view line) {
        fuzz::check(line.size() <= LineSplitter::longestLine, "lines are limited");
        fuzz::check(line.find_first_of("\r\n") == std::string_view::npos, "lines have no ends");
        reading.lines.emplace_back(line);
        if (const auto payload = eventPayload(line)) {
            claude.read(*payload);
            gemini.read(*payload);
        }
        return true;
    };
    LineSplitter splitter;
    for (const std::string_view piece : pieces)
        splitter.feed(piece, onLine);
    splitter.finish(onLine);
    reading.claude = claude.finish();
    reading.gemini = gemini.finish();
    return reading;
}

Pieces cutAtMarks(std::string_view input)
{
    Pieces pieces;
    while (!input.empty()) {
        const std::size_t length = std::min(input.find('\xFF'), input.size());
        pieces.push_back(input.substr(0, length));
        input.remove_prefix(std::min(length + 1, input.size()));
    }
    return pieces;
}

Pieces singleBytes(std::string_view stream)
{
    Pieces pieces;
    for (std::size_t i = 0; i < stream.size(); ++i)
        pieces.push_back(stream.substr(i, 1));
    return pieces;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Pieces chosen = cutAtMarks({reinterpret_cast<const char*>(data), size});
    std::string stream;
    for (const std::string_view piece : chosen)
        stream += piece;

    const Reading whole = read({stream});
    fuzz::check(read(chosen) == whole, "cuts anywhere make no difference");
    fuzz::check(read(singleBytes(stream)) == whole, "cuts everywhere make no difference");
    return 0;
}
