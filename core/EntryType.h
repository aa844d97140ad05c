#pragma once

#include "core/RawValue.h"

namespace varno {

/// The kind of entry that a query receives.
enum class EntryType {
    definition,  ///< a short definition
    shortAnswer, ///< one paragraph
    full,        ///< an article with a table of contents
};

template <>
struct RawValues<EntryType> {
    static constexpr std::array<RawCase<EntryType>, 3> cases = {{
        {EntryType::definition, QLatin1StringView("definition")},
        {EntryType::shortAnswer, QLatin1StringView("shortAnswer")},
        {EntryType::full, QLatin1StringView("full")},
    }};
};

/// One word is defined, two to four get a short answer, all else a full article. Only the blank
/// U+0020 separates words.
EntryType detectEntryType(const QString& query);

} // namespace varno
