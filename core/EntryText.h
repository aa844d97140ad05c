#pragma once

#include <QString>

#include <optional>

namespace varno {

/// The most UTF-16 units that a page keeps of an answer: a hundred times what the largest request
/// asks for. A longer answer is a fault, and would make the history too large to be read.
inline constexpr qsizetype longestEntryText = 2LL * 1024 * 1024;

// How a model's answer, without its opening "<entry>", is read.

/// The text after "SEE_ALSO_JSON:", trimmed; nothing when the answer has no such line.
std::optional<QString> relatedTopicsText(const QString& answer);

/// The entry alone: the text before the related topics and before "</entry>", trimmed.
QString cleanEntryText(const QString& answer);

/// A title from a query: the first letter of each word in upper case, all others in lower case.
/// Words are what white space separates.
QString capitalised(const QString& query);

} // namespace varno
