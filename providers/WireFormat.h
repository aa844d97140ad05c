#pragma once

#include <QString>

#include <optional>
#include <string_view>

namespace varno::json {
class Parser;
}

namespace varno {

// What the two services send. Every reader is strict about the members it knows, in all of their
// occurrences, and ignores unknown ones. `parser` only lends its memory.

/// The payload of a line of an event stream, if it is a line with data.
std::optional<std::string_view> eventPayload(std::string_view line);

/// The text that one Anthropic event adds; nothing for an event of another kind or a malformed one.
std::optional<QString> claudeEventText(json::Parser& parser, std::string_view payload);

/// The text that one Gemini chunk adds: that of its first candidate's first part.
std::optional<QString> geminiEventText(json::Parser& parser, std::string_view payload);

/// The first text block of a whole Anthropic reply, empty when it has none; nothing when `body` is
/// no such reply.
std::optional<QString> claudeReplyText(json::Parser& parser, std::string_view body);

/// The same for Gemini.
std::optional<QString> geminiReplyText(json::Parser& parser, std::string_view body);

/// The message of a Gemini error reply.
std::optional<QString> geminiErrorMessage(json::Parser& parser, std::string_view body);

} // namespace varno
