#pragma once

#include "core/EntryType.h"

#include <QString>

#include <optional>
#include <variant>

namespace varno {

/// An entry of some kind on a topic.
struct EntryQuestion {
    EntryType type = EntryType::full;
    QString topic;

    bool operator==(const EntryQuestion&) const = default;
};

/// One section of the article on a topic.
struct SectionQuestion {
    QString section;
    QString topic;

    bool operator==(const SectionQuestion&) const = default;
};

/// The names of the sections of the article on a topic.
struct TOCQuestion {
    QString topic;

    bool operator==(const TOCQuestion&) const = default;
};

using Question = std::variant<EntryQuestion, SectionQuestion, TOCQuestion>;

/// What a prompt of core/Prompts.h asks, exactly, whatever the topic holds. A prompt that begins
/// like one of them and goes on otherwise, as typed by hand, counts up to its last quote.
std::optional<Question> readPrompt(const QString& prompt);

} // namespace varno
