#include "reader/Characters.h"

#include <unicode/ubrk.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <memory>

namespace varno {
namespace {

struct CloseBreakIterator {
    void operator()(UBreakIterator* iterator) const { ubrk_close(iterator); }
};

/// Null when ICU has no data for it; then every position counts as a boundary.
UBreakIterator* breakIterator()
{
    thread_local const std::unique_ptr<UBreakIterator, CloseBreakIterator> iterator = [] {
        UErrorCode error = U_ZERO_ERROR;
        return std::unique_ptr<UBreakIterator, CloseBreakIterator>(
            ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &error));
    }();
    return iterator.get();
}

/// Characters below the first combining mark stand for themselves, unless they are a line end.
bool standsAlone(QChar character)
{
    return character >= u' ' && character < QChar(0x300);
}

/// The break iterator over `text`; null when `position` is a boundary for certain.
UBreakIterator* iteratorUnlessBoundary(QStringView text, qsizetype position)
{
    if (position <= 0 || position >= text.size() ||
        (standsAlone(text[position - 1]) && standsAlone(text[position])))
        return nullptr;
    UBreakIterator* iterator = breakIterator();
    UErrorCode error = U_ZERO_ERROR;
    if (iterator != nullptr)
        ubrk_setText(iterator, text.utf16(), static_cast<int32_t>(text.size()), &error);
    if (iterator == nullptr || U_FAILURE(error) ||
        ubrk_isBoundary(iterator, static_cast<int32_t>(position)))
        return nullptr;
    return iterator;
}

} // namespace

QStringView withoutLeadingBlanks(QStringView line)
{
    const auto* first = std::find_if_not(line.begin(), line.end(), isBlank);
    return line.sliced(first - line.begin());
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

bool isPartOfPicture(QChar unit)
{
    constexpr char16_t pictureSelector = 0xFE0F;
    return unit.isSurrogate() || unit == pictureSelector ||
           u_hasBinaryProperty(unit.unicode(), UCHAR_EMOJI_PRESENTATION) != 0;
}

qsizetype characterBoundaryBefore(QStringView text, qsizetype position)
{
    UBreakIterator* iterator = iteratorUnlessBoundary(text, position);
    return iterator == nullptr ? position
                               : ubrk_preceding(iterator, static_cast<int32_t>(position));
}

qsizetype characterBoundaryAfter(QStringView text, qsizetype position)
{
    UBreakIterator* iterator = iteratorUnlessBoundary(text, position);
    return iterator == nullptr ? position
                               : ubrk_following(iterator, static_cast<int32_t>(position));
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
