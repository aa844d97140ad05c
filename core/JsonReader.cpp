#include "core/JsonReader.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace varno::json {
namespace {

/// `token` as the parser can hold it: an integer as a double where it takes one, and what no double
/// holds as a value that no record of ours has a member for. All else stays as it is.
std::string readableNumber(std::string_view token)
{
    double value = 0;
    const auto [end, error] = std::from_chars(token.data(), token.data() + token.size(), value);
    if (error == std::errc::result_out_of_range && end == token.data() + token.size())
        return "true";
    constexpr double beyondIntegers = 9223372036854775808.0;
    const bool isInteger = token.find_first_of(".eE") == std::string_view::npos;
    return std::string(token) + (isInteger && std::abs(value) >= beyondIntegers ? "e0" : "");
}

std::string withReadableNumbers(std::string_view text)
{
    std::string readable;
    readable.reserve(text.size());
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
            readable += readableNumber(text.substr(0, length));
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
