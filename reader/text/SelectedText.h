#pragma once

#include <QString>

class QTextCursor;

namespace varno {

/// The plain text of a selection in a document of `DocumentWriter`: blocks are separated by empty
/// lines, and each item of a list has a line of its own, led by "- " or by its number.
[[nodiscard]] QString selectedText(const QTextCursor& cursor);

} // namespace varno
