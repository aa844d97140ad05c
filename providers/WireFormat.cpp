#include "providers/WireFormat.h"

#include "core/JsonReader.h"

#include <cmath>

namespace varno {
namespace {

using Text = std::optional<std::string_view>;

std::optional<QString> toQString(Text text)
{
    return text ? std::optional(json::toQString(*text)) : std::nullopt;
}

std::optional<json::Object> parseObject(json::Parser& parser, std::string_view text)
{
    const auto value = json::parse(parser, text);
    return value ? json::as<json::Object>(*value) : std::nullopt;
}

/// A whole number that a signed 64-bit integer holds, also when written as 1.0 or 1e3.
bool isInteger(json::Value value)
{
    if (json::as<std::int64_t>(value))
        return true;
    const auto number = json::as<double>(value);
    return number && value.is_double() && std::trunc(*number) == *number &&
           std::abs(*number) < 0x1p63;
}

bool isAbsentOrInteger(json::Object object, std::string_view name)
{
    const auto value = json::member(object, name);
    return !value || value->is_null() || isInteger(*value);
}

/// A record {"type": string, "text": string or absent}. False when it is not one.
bool readTyped(json::Object object, std::string_view& type, Text& text)
{
    const Text foundType = json::requiredMember<std::string_view>(object, "type");
    const auto foundText = json::optionalMember<std::string_view>(object, "text");
    if (!foundType || !foundText.valid)
        return false;
    type = *foundType;
    text = foundText.value;
    return true;
}

/// Walks the records of `array`; what the first one holds goes to `first`. False when any of them
/// is not as `read` wants it.
template <typename Read>
bool readFirst(json::Array array, Text& first, Read read)
{
    bool isFirst = true;
    for (const json::Value element : array) {
        const auto object = json::as<json::Object>(element);
        Text text;
        if (!object || !read(*object, text))
            return false;
        if (isFirst)
            first = text;
        isFirst = false;
    }
    return true;
}

bool readPart(json::Object part, Text& text)
{
    const auto found = json::optionalMember<std::string_view>(part, "text");
    text = found.value;
    return found.valid;
}

bool readContent(json::Object content, Text& text)
{
    const auto parts = json::optionalMember<json::Array>(content, "parts");
    return parts.valid && (!parts.value || readFirst(*parts.value, text, readPart));
}

bool readCandidate(json::Object candidate, Text& text)
{
    const auto content = json::optionalMember<json::Object>(candidate, "content");
    return content.valid && (!content.value || readContent(*content.value, text));
}

/// The record that a Gemini reply and each chunk of a streamed one share. False when it is not one.
bool readCandidates(json::Parser& parser, std::string_view body, Text& text)
{
    const auto reply = parseObject(parser, body);
    if (!reply)
        return false;
    const auto candidates = json::optionalMember<json::Array>(*reply, "candidates");
    return candidates.valid &&
           (!candidates.value || readFirst(*candidates.value, text, readCandidate));
}

Text readDelta(json::Object delta)
{
    std::string_view type;
    Text text;
    return readTyped(delta, type, text) ? text : std::nullopt;
}

Text readEvent(json::Object event)
{
    const Text type = json::requiredMember<std::string_view>(event, "type");
    if (type != "content_block_delta" || !isAbsentOrInteger(event, "index"))
        return std::nullopt;
    const auto delta = json::requiredMember<json::Object>(event, "delta");
    return delta ? readDelta(*delta) : std::nullopt;
}

} // namespace

std::optional<std::string_view> eventPayload(std::string_view line)
{
    constexpr std::string_view prefix = "data: ";
    if (!line.starts_with(prefix))
        return std::nullopt;
    return line.substr(prefix.size());
}

std::optional<QString> claudeEventText(json::Parser& parser, std::string_view payload)
{
    const auto event = parseObject(parser, payload);
    return event ? toQString(readEvent(*event)) : std::nullopt;
}

std::optional<QString> geminiEventText(json::Parser& parser, std::string_view payload)
{
    Text text;
    return readCandidates(parser, payload, text) ? toQString(text) : std::nullopt;
}

std::optional<QString> claudeReplyText(json::Parser& parser, std::string_view body)
{
    const auto reply = parseObject(parser, body);
    const auto blocks = reply ? json::requiredMember<json::Array>(*reply, "content") : std::nullopt;
    if (!blocks)
        return std::nullopt;

    std::optional<Text> firstText;
    for (const json::Value element : *blocks) {
        const auto block = json::as<json::Object>(element);
        std::string_view type;
        Text text;
        if (!block || !readTyped(*block, type, text))
            return std::nullopt;
        if (!firstText && type == "text")
            firstText = text;
    }
    return json::toQString(firstText.value_or(Text()).value_or(std::string_view()));
}

std::optional<QString> geminiReplyText(json::Parser& parser, std::string_view body)
{
    Text text;
    if (!readCandidates(parser, body, text))
        return std::nullopt;
    return json::toQString(text.value_or(std::string_view()));
}

std::optional<QString> geminiErrorMessage(json::Parser& parser, std::string_view body)
{
    const auto reply = parseObject(parser, body);
    const auto error = reply ? json::requiredMember<json::Object>(*reply, "error") : std::nullopt;
    if (!error || !isAbsentOrInteger(*error, "code") ||
        !json::optionalMember<std::string_view>(*error, "status").valid)
        return std::nullopt;
    return toQString(json::requiredMember<std::string_view>(*error, "message"));
}

} // namespace varno
