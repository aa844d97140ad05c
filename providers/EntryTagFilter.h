#pragma once

#include <QString>

#include <optional>

namespace varno {

/// Holds back what a model says before its entry: text passes only from behind the first "<entry>".
class EntryTagFilter {
public:
    /// The text to hand on now, if any.
    std::optional<QString> filter(const QString& text);

    /// At the end of the answer: all of it if it never had the tag and is not empty.
    [[nodiscard]] std::optional<QString> rest() const;

private:
    QString m_held;
    bool m_tagSeen = false;
};

} // namespace varno
