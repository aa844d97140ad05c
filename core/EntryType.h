#pragma once

#include "core/RawValue.h"

namespace varno {

using namespace Qt::StringLiterals;

/// The kind of entry that a query receives.
enum class EntryType {
    definition,  ///< a short definition
    shortAnswer, ///< one paragraph
    full,        ///< an article with a table of contents
};

template <>
struct RawValues<EntryType> {
    static constexpr std::array<RawCase<EntryType>, 3> cases = {{
        {EntryType::definition, "definition"_L1},
        {EntryType::shortAnswer, "shortAnswer"_L1},
        {EntryType::full, "full"_L1},
    }};
};

/// The kind of entry for a query: a definition for one word, a short answer for two to four,
/// otherwise a full article. Only the blank U+0020 separates words.
EntryType detectEntryType(const QString& query);

} // namespace varno
