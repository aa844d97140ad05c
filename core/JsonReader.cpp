#include "core/JsonReader.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <locale>
#include <sstream>
#include <string>

namespace varno::json {
namespace {

/// Reads numbers as JSON writes them, whatever the user's language. Not every standard library has
/// `from_chars` for doubles.
class NumberReader {
public:
    NumberReader() { m_stream.imbue(std::locale::classic()); }

    /// Zero for what is no number, and infinite for one that no double holds.
    double read(const std::string& token)
    {
        double value = 0;
        m_stream.clear();
        m_stream.str(token);
        m_stream >> value;
        if (!m_stream.eof()) // there is more than a number
            return 0;
        const bool isTooLarge = m_stream.fail() && value != 0;
        const std::size_t exponent = std::min(token.find_first_of("eE"), token.size());
        const bool isTooSmall =
            !m_stream.fail() && value == 0 && token.find_first_of("123456789") < exponent;
        return isTooLarge || isTooSmall ? std::numeric_limits<double>::infinity() : value;
    }

private:
    std::istringstream m_stream;
};

/// `token` as the parser can hold it: an integer as a double where it takes one, and what no double
/// holds as a value that no record of ours has a member for. All else stays as it is.
std::string readableNumber(const std::string& token, NumberReader& reader)
{
    const double value = reader.read(token);
    if (std::isinf(value))
        return "true";
    constexpr double beyondIntegers = 9223372036854775808.0;
    const bool isInteger = token.find_first_of(".eE") == std::string::npos;
    return token + (isInteger && std::abs(value) >= beyondIntegers ? "e0" : "");
}

std::string withReadableNumbers(std::string_view text)
{
    std::string readable;
    readable.reserve(text.size());
    NumberReader reader;
    while (!text.empty()) {
        // A text as a whole, or what starts a number and what starts neither.
        std::size_t length = 1;
        if (text.front() == '"') {
            while (length < text.size() && text[length] != '"')
                length += text[length] == '\\' ? 2 : 1;
            length = std::min(length + 1, text.size());
            readable += text.substr(0, length);
        } else if (text.front() == '-' || (text.front() >= '0' && text.front() <= '9')) {
            length = std::min(text.find_first_not_of("0123456789+-.eE"), text.size());
            readable += readableNumber(std::string(text.substr(0, length)), reader);
        } else {
            readable += text.front();
        }
        text.remove_prefix(length);
    }
    return readable;
}

std::optional<Value> parse(Parser& parser, QByteArrayView bytes, bool isRoomy)
{
    std::string_view text(bytes.data(), static_cast<std::size_t>(bytes.size()));
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    if (text.empty())
        return std::nullopt;
    Value value;
    auto error = parser.parse(text.data(), text.size(), !isRoomy).get(value);
    if (error != simdjson::SUCCESS) {
        const std::string readable = withReadableNumbers(text);
        if (readable != text)
            error = parser.parse(readable).get(value);
    }
    return error == simdjson::SUCCESS ? std::optional(value) : std::nullopt;
}

} // namespace

std::optional<Value> parse(Parser& parser, QByteArrayView bytes)
{
    return parse(parser, bytes, false);
}

std::optional<Value> parse(Parser& parser, const QByteArray& bytes)
{
    QByteArray shared = bytes;
    // Not what its capacity tells: that counts room in front, which a removal leaves.
    const qsizetype room = shared.data_ptr().freeSpaceAtEnd();
    return parse(parser, bytes, room >= qsizetype{simdjson::SIMDJSON_PADDING});
}

} // namespace varno::json
