#pragma once

#include <QString>

class QTextCursor;

namespace varno {

// What is selected in a document of `DocumentWriter`, as text without looks: blocks are separated
// by empty lines, each item of a list, each line of code and of a table has a line of its own, led
// by
// "- " or by its number, and cells are separated by tabs.

[[nodiscard]] QString selectedText(const QTextCursor& cursor);

/// With the address of each link behind it.
[[nodiscard]] QString selectedTextWithLinks(const QTextCursor& cursor);

} // namespace varno
