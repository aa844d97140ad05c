#include "reader/text/Blocks.h"

#include "reader/text/Characters.h"

#include <algorithm>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

/// One word that is no longer than this is the number of an item. Anything else is a sentence that
/// happens to begin with a number.
constexpr qsizetype longestNumber = 5;

bool isNumber(QStringView text)
{
    return text.size() <= longestNumber &&
           std::none_of(text.begin(), text.end(), [](QChar unit) { return unit.isSpace(); });
}

QStringView withoutOuterBlanks(QStringView line)
{
    line = withoutLeadingBlanks(line);
    while (!line.isEmpty() && isBlank(line.back()))
        line.chop(1);
    return line;
}

QStringView firstLine(QStringView block)
{
    const qsizetype end = block.indexOf(u'\n');
    return end < 0 ? block : block.first(end);
}

bool beginsWithBullet(QStringView line)
{
    return line.startsWith(u"- ") || line.startsWith(u"* ");
}

bool beginsWithHeading(QStringView line)
{
    return line.startsWith(u"# ") || line.startsWith(u"## ") || line.startsWith(u"### ");
}

} // namespace

qsizetype splitHeadingFromBody(QStringView block)
{
    if (!beginsWithHeading(block))
        return 0;
    const qsizetype end = block.indexOf(u'\n');
    return end < 0 || block.sliced(end).trimmed().isEmpty() ? 0 : end;
}

bool isBoldHeader(QStringView block)
{
    if (block.size() < 5 || !block.startsWith(u"**") || !block.endsWith(u"**"))
        return false;
    return !block.contains(u'\n') && !block.sliced(2).chopped(2).contains(u"**");
}

bool isBulletList(QStringView block)
{
    return beginsWithBullet(withoutOuterBlanks(firstLine(block)));
}

bool isNumberedList(QStringView block)
{
    const QStringView line = withoutOuterBlanks(firstLine(block));
    return beginsWithNumeral(line) && line.contains(u". ");
}

BlockKind blockKind(QStringView block)
{
    if (isBoldHeader(block))
        return BlockKind::boldHeader;
    if (block.startsWith(u"### "))
        return BlockKind::heading3;
    if (block.startsWith(u"## "))
        return BlockKind::heading2;
    if (block.startsWith(u"# "))
        return BlockKind::heading1;
    if (isBulletList(block))
        return BlockKind::bulletList;
    if (isNumberedList(block))
        return BlockKind::numberedList;
    return BlockKind::paragraph;
}

QStringView blockText(QStringView block, BlockKind kind)
{
    switch (kind) {
    case BlockKind::boldHeader:
        return block.sliced(2).chopped(2);
    case BlockKind::heading3:
        return block.sliced(4);
    case BlockKind::heading2:
        return block.sliced(3);
    case BlockKind::heading1:
        return block.sliced(2);
    case BlockKind::bulletList:
    case BlockKind::numberedList:
    case BlockKind::paragraph:
        break;
    }
    return block;
}

std::optional<ListItem> listItem(QStringView line, BlockKind list)
{
    line = withoutOuterBlanks(line);
    if (list == BlockKind::bulletList) {
        if (!beginsWithBullet(line))
            return std::nullopt;
        return ListItem{.mark = u"•"_s, .text = line.sliced(2)};
    }
    const qsizetype point = line.indexOf(u". ");
    if (point < 0)
        return std::nullopt;
    if (!isNumber(line.first(point)))
        return ListItem{.mark = {}, .text = line};
    return ListItem{.mark = line.first(point + 1).toString(), .text = line.sliced(point + 2)};
}

} // namespace varno
