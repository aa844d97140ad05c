#pragma once

#include <QString>

class QTextCursor;

namespace varno {

/// What a selection in a document of `DocumentWriter` is as plain text: an empty line between
/// blocks, each item of a list on a line of its own, led by "- " or by its number.
[[nodiscard]] QString selectedText(const QTextCursor& cursor);

} // namespace varno
