#pragma once

#include <QStringList>

#include <optional>

namespace varno {

enum class BlockKind {
    boldHeader,
    heading3,
    heading2,
    heading1,
    bulletList,
    numberedList,
    paragraph,
};

constexpr bool isList(BlockKind kind)
{
    return kind == BlockKind::bulletList || kind == BlockKind::numberedList;
}

/// The blocks of a text, in reading order: what stands between empty lines, trimmed, each heading
/// line apart from what follows it.
[[nodiscard]] QStringList blocks(QStringView text);

/// A heading on the first of several lines becomes a block of its own, again and again.
[[nodiscard]] QStringList splitHeadingFromBody(QStringView block);

/// The length of the heading line that `splitHeadingFromBody` would split off a trimmed block; 0
/// when it would not.
[[nodiscard]] qsizetype headingToSplitOff(QStringView block);

[[nodiscard]] bool isBoldHeader(QStringView block);
[[nodiscard]] bool isBulletList(QStringView block);
[[nodiscard]] bool isNumberedList(QStringView block);

/// The kind that a block is shown as.
[[nodiscard]] BlockKind blockKind(QStringView block);

/// What of a block that is no list is shown: a heading without the marks that make it one.
[[nodiscard]] QStringView shownText(QStringView block, BlockKind kind);

/// A row of a list: its mark ("•", or a number with its "."), and the text of the item. The mark is
/// empty where what should be a number is a sentence; it then stands in the text.
struct ListItem {
    QString mark;
    QStringView text;
};

/// What a line of a list shows; nothing for a line that is no item.
[[nodiscard]] std::optional<ListItem> listItem(QStringView line, BlockKind list);

} // namespace varno
