#pragma once

#include <QMimeData>
#include <QStringList>

#include <memory>

namespace varno {

/// A page as it is copied as a whole: as plain text its Markdown, beside it the typeset page.
///
/// `text` is what copying all of its text gives. Its rich text, if it has one, gets the title
/// before it and the related topics after it.
[[nodiscard]] std::unique_ptr<QMimeData> copiedEntry(const QString& title, QStringView markdown,
                                                     const QMimeData& text,
                                                     const QStringList& relatedTopics);

} // namespace varno
