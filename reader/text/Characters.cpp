#include "reader/text/Characters.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace varno {

QStringView withoutLeadingBlanks(QStringView line)
{
    const auto* first = std::find_if_not(line.begin(), line.end(), isBlank);
    return line.sliced(first - line.begin());
}

qsizetype repetitions(QStringView line, QChar mark)
{
    const auto* end =
        std::find_if(line.begin(), line.end(), [mark](QChar other) { return other != mark; });
    return end - line.begin();
}

bool beginsWithNumeral(QStringView text)
{
    if (text.isEmpty())
        return false;
    const char32_t first = text.size() > 1 && text[0].isHighSurrogate() && text[1].isLowSurrogate()
                               ? QChar::surrogateToUcs4(text[0], text[1])
                               : text[0].unicode();
    return u_getIntPropertyValue(static_cast<UChar32>(first), UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

QChar documentCharacter(QChar character)
{
    switch (character.unicode()) {
    case u'\n':
    case u'\r':
        return u' ';
    case QChar::ParagraphSeparator:
        return QChar::LineSeparator;
    case 0xFDD0:
    case 0xFDD1:
    case QChar::ObjectReplacementCharacter:
        return QChar::ReplacementCharacter;
    default:
        return character;
    }
}

} // namespace varno
