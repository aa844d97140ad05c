#pragma once

#include "core/EntryType.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QStringList>
#include <QUuid>

#include <optional>

namespace varno {

/// A page: the entry for a query, or a section of it.
struct Page {
    QUuid id;
    QString title;
    QString content; ///< empty until written, raw while it streams
    QStringList tableOfContents;
    QStringList seeAlso;
    std::optional<QUuid> parentPageId;        ///< of a section page alone
    std::optional<QString> parentSectionName; ///< as the parent's table of contents has it
    EntryType entryType = EntryType::full;

    bool operator==(const Page&) const = default;
};

/// Seconds since 2001-01-01 00:00:00 UTC, the epoch of the history file.
using ReferenceSeconds = double;
[[nodiscard]] ReferenceSeconds toReferenceSeconds(const QDateTime& date);

/// The pages reached from one query, and the order in which they were shown.
struct Session {
    QUuid id;
    QString rootQuery; ///< as typed, trimmed
    QHash<QUuid, Page> pages;
    QList<QUuid> navigationHistory; ///< the first one is the root page's
    ReferenceSeconds createdAt = 0;

    /// The page shown last. Like every page returned here, owned by the session and valid until the
    /// session changes; null when there is none.
    [[nodiscard]] const Page* currentPage() const;
    [[nodiscard]] const Page* rootPage() const;
    [[nodiscard]] const Page* page(const QUuid& pageId) const;

    /// The page to change, in place. Null when there is none.
    [[nodiscard]] Page* mutablePage(const QUuid& pageId);

    /// Stores `page`, in place of one with the same id, and shows it.
    void push(const Page& page);

    /// Shows a page of the session again; without effect for any other.
    void revisit(const QUuid& pageId);

    /// Cuts the trail after the last time that `pageId` was shown; without effect when it never
    /// was.
    void cutHistoryAfter(const QUuid& pageId);

    /// Removes a page, also from the trail.
    void remove(const QUuid& pageId);

    /// A written page for that section of `parentId`, by its exact name.
    [[nodiscard]] const Page* cachedSectionPage(const QUuid& parentId,
                                                const QString& sectionName) const;

    bool operator==(const Session&) const = default;
};

} // namespace varno
