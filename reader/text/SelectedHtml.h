#pragma once

#include <QString>

class QTextCursor;

namespace varno {

/// What is selected in a document of `DocumentWriter` as HTML that word processors understand:
/// headings, lists, tables, quotes and code as such, the looks of letters, and links. No colours,
/// no sizes and no fonts.
[[nodiscard]] QString selectedHtml(const QTextCursor& cursor);

} // namespace varno
