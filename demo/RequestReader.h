#pragma once

#include "core/JsonReader.h"

#include <QByteArray>

#include <optional>
#include <string_view>

namespace varno::json {

// What the requests of both services have in common.

/// The record that `body` is; good until `parser` reads the next one.
inline std::optional<Object> readRecord(Parser& parser, const QByteArray& body)
{
    const std::string_view text(body.data(), static_cast<std::size_t>(body.size()));
    const auto value = parse(parser, text);
    return value ? as<Object>(*value) : std::nullopt;
}

/// Calls `read` for each record of `array`. False when there is none, one is no record, or `read`
/// refuses one.
template <typename Read>
bool readRecords(Array array, Read read)
{
    for (const Value element : array) {
        const auto object = as<Object>(element);
        if (!object || !read(*object))
            return false;
    }
    return array.size() > 0;
}

/// Whether the member is a whole number above zero.
inline bool isPositive(Object object, std::string_view name)
{
    return requiredMember<std::int64_t>(object, name).value_or(0) > 0;
}

/// Whether tools are given; nothing when they are not what a service understands.
inline std::optional<bool> readTools(Object request)
{
    const auto tools = optionalMember<Array>(request, "tools");
    if (!tools.valid)
        return std::nullopt;
    if (!tools.value || tools.value->size() == 0)
        return false;
    const bool valid = readRecords(*tools.value, [](Object tool) { return tool.size() > 0; });
    return valid ? std::optional(true) : std::nullopt;
}

} // namespace varno::json
