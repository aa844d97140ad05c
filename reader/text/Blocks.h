#pragma once

#include <QString>

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

/// Where a trimmed block is split: the length of a heading on the first of several lines, which is
/// a block of its own; 0 where there is none.
[[nodiscard]] qsizetype splitHeadingFromBody(QStringView block);

[[nodiscard]] bool isBoldHeader(QStringView block);
[[nodiscard]] bool isBulletList(QStringView block);
[[nodiscard]] bool isNumberedList(QStringView block);

/// The kind that a block is shown as.
[[nodiscard]] BlockKind blockKind(QStringView block);

/// What of a block that is no list is shown: a heading without the marks that make it one.
[[nodiscard]] QStringView blockText(QStringView block, BlockKind kind);

/// A row of a list: its mark ("•", or a number with its "."), and the text of the item. The mark is
/// empty where what should be a number is a sentence; it then stands in the text.
struct ListItem {
    QString mark;
    QStringView text;
};

/// What a line of a list shows; nothing for a line that is no item.
[[nodiscard]] std::optional<ListItem> listItem(QStringView line, BlockKind list);

} // namespace varno
