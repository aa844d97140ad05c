#include "demo/Question.h"

#include "core/Prompts.h"

#include <array>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

constexpr char16_t quote = u'"';

/// The text in place of `marker` in `pattern`; nothing when `prompt` begins otherwise.
std::optional<QString> readTopic(const QString& prompt, const QString& pattern,
                                 const QString& marker)
{
    const qsizetype start = pattern.indexOf(marker);
    const QString tail = pattern.sliced(start + marker.size());
    if (!prompt.startsWith(pattern.first(start)))
        return std::nullopt;
    const qsizetype end = prompt.endsWith(tail) ? prompt.size() - tail.size()
                                                : qMax(start, prompt.lastIndexOf(quote));
    return end < start ? std::nullopt : std::optional(prompt.sliced(start, end - start));
}

std::optional<SectionQuestion> readSectionPrompt(const QString& prompt, const QString& marker)
{
    const QString pattern = sectionPrompt(marker, marker);
    const QString head = pattern.section(marker, 0, 0);
    const QString middle = pattern.section(marker, 1, 1);
    const qsizetype first = prompt.indexOf(middle);
    if (!prompt.startsWith(head) || first < 0)
        return std::nullopt;

    // Section and topic stand twice each, so that their lengths together are known.
    const qsizetype lengths = (prompt.size() - sectionPrompt({}, {}).size()) / 2;
    for (qsizetype i = first; i >= 0; i = prompt.indexOf(middle, i + 1)) {
        const QString section = prompt.sliced(head.size(), i - head.size());
        const QString topic = prompt.mid(i + middle.size(), qMax(0, lengths - section.size()));
        if (sectionPrompt(section, topic) == prompt)
            return SectionQuestion{.section = section, .topic = topic};
    }
    const QString rest = prompt.sliced(first + middle.size());
    return SectionQuestion{.section = prompt.sliced(head.size(), first - head.size()),
                           .topic = rest.first(qMax(0, rest.lastIndexOf(quote)))};
}

} // namespace

std::optional<Question> readPrompt(const QString& prompt)
{
    const QString marker = QChar(QChar::ReplacementCharacter);
    constexpr std::array types = {EntryType::definition, EntryType::shortAnswer, EntryType::full};
    for (const EntryType type : types) {
        if (const auto topic = readTopic(prompt, entryPrompt(type, marker), marker))
            return EntryQuestion{.type = type, .topic = *topic};
    }
    if (const auto topic = readTopic(prompt, tocPrompt(marker), marker))
        return TOCQuestion{.topic = *topic};
    return readSectionPrompt(prompt, marker);
}

} // namespace varno
