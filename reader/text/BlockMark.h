#pragma once

#include <QStringView>

namespace varno {

/// The kind of block that the first characters of a line would open in Markdown.
enum class BlockMark {
    none,
    orderedItem, ///< a list item with a number
    other,     ///< any other item, a heading, a quote, a fence, a rule, the underline of a heading
    reference, ///< the definition of a link's address, or just a bracket
};

/// `line` has no blanks at its start.
[[nodiscard]] BlockMark blockMark(QStringView line);

} // namespace varno
