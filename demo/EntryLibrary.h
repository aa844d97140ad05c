#pragma once

#include "core/EntryType.h"

#include <QList>
#include <QStringList>

#include <optional>

namespace varno {

/// A section of an article, in the form in which a model would answer, without its tags.
struct LibrarySection {
    QString name;
    QString text;
};

/// What the library holds on one topic. Each text ends with its related topics.
struct LibraryTopic {
    QString title;
    std::optional<QString> definition;
    std::optional<QString> answer;
    std::optional<QString> article;
    QList<LibrarySection> sections; ///< of the article, in its order

    /// The entry of that kind. An article's opening serves as definition and as short answer where
    /// there is no other.
    [[nodiscard]] std::optional<QString> entry(EntryType type) const;

    /// Ignores case and blanks around the name; null when there is no such section.
    [[nodiscard]] const LibrarySection* section(const QString& name) const;
};

/// The small library of entries that is built into the program. Immutable.
class EntryLibrary {
public:
    EntryLibrary();

    [[nodiscard]] const QList<LibraryTopic>& topics() const { return m_topics; }
    [[nodiscard]] QStringList titles() const;

    /// The topic that `query` means, whatever its case, blanks, leading article or closing mark,
    /// and also under the shorter names that readers use; null when there is none.
    [[nodiscard]] const LibraryTopic* find(const QString& query) const;

private:
    QList<LibraryTopic> m_topics;
};

} // namespace varno
