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

/// The length of the heading line that a trimmed block of several lines begins with, and that
/// becomes a block of its own; 0 if there is none.
[[nodiscard]] qsizetype splitHeadingFromBody(QStringView block);

[[nodiscard]] bool isBoldHeader(QStringView block);
[[nodiscard]] bool isBulletList(QStringView block);
[[nodiscard]] bool isNumberedList(QStringView block);

/// The kind of a block.
[[nodiscard]] BlockKind blockKind(QStringView block);

/// The Markdown of a block that is no list, without the marks of its kind.
[[nodiscard]] QStringView blockText(QStringView block, BlockKind kind);

/// A row of a list: its mark ("•", or a number with its "."), and the text of the item. The mark is
/// empty where what should be a number is a sentence; it then stands in the text.
struct ListItem {
    QString mark;
    QStringView text;
};

/// The item that a line of a list is; nothing for a line that is no item.
[[nodiscard]] std::optional<ListItem> listItem(QStringView line, BlockKind list);

} // namespace varno
