#include "reader/text/BlockMark.h"

#include "reader/text/Characters.h"

#include <algorithm>

namespace varno {
namespace {

bool endsOrBlankAt(QStringView line, qsizetype position)
{
    return position == line.size() || isBlank(line[position]);
}

/// A line of nothing but one mark and blanks.
bool isAllOf(QStringView line, QChar mark)
{
    return std::all_of(line.begin(), line.end(),
                       [mark](QChar character) { return character == mark || isBlank(character); });
}

bool isOrderedItem(QStringView line)
{
    constexpr qsizetype mostDigits = 9;
    const auto* end = std::find_if_not(line.begin(), line.end(), [](QChar character) {
        return character >= u'0' && character <= u'9';
    });
    const qsizetype digits = end - line.begin();
    return digits > 0 && digits <= mostDigits && digits < line.size() &&
           (line[digits] == u'.' || line[digits] == u')') && endsOrBlankAt(line, digits + 1);
}

} // namespace

BlockMark blockMark(QStringView line)
{
    if (line.isEmpty())
        return BlockMark::none;
    const auto otherWhen = [](bool condition) {
        return condition ? BlockMark::other : BlockMark::none;
    };
    switch (line.front().unicode()) {
    case u'#':
        return otherWhen(repetitions(line, u'#') <= 6 &&
                         endsOrBlankAt(line, repetitions(line, u'#')));
    case u'>':
        return BlockMark::other;
    case u'=':
        return otherWhen(isAllOf(line, u'='));
    case u'+':
        return otherWhen(endsOrBlankAt(line, 1));
    case u'-':
    case u'*':
        return otherWhen(endsOrBlankAt(line, 1) || isAllOf(line, line.front()));
    case u'_':
        return otherWhen(isAllOf(line, u'_'));
    case u'`':
    case u'~':
        return otherWhen(repetitions(line, line.front()) >= 3);
    case u'[':
        return BlockMark::reference;
    default:
        return isOrderedItem(line) ? BlockMark::orderedItem : BlockMark::none;
    }
}

} // namespace varno
